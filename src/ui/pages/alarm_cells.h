// SPDX-License-Identifier: GPL-3.0-or-later
// The box of an alarm and the name of its sound, each of which opens the sound chooser.
#pragma once

#include "model/current_readings.h"
#include "platform/media_control.h"
#include "records/alarm_controls.h"
#include "records/messages.h"

class QWidget;

namespace skyhold {

class AlarmBox;
class SoundName;

// What alarms need; it outlives the cells. `media` plays the previews of the sound chooser,
// `showMessage` offers to switch an alarm on that was given a sound.
struct AlarmUse {
    AlarmControls& alarms;
    CurrentReadings& readings;
    MediaControl& media;
    const ShowMessage& showMessage;
};

struct AlarmCells {
    AlarmBox* box;    // with the control's name
    SoundName* sound; // "Sound" and that name
};

// `what` says in words what the alarm is for.
AlarmCells makeAlarmCells(const AlarmUse& use, CheckBox& alarm, const QString& name,
                          const QString& what, QWidget* parent);

} // namespace skyhold
