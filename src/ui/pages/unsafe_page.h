// Which levels and which failures make the sky unsafe and sound an alarm, and how long a return to
// safe is delayed.
#pragma once

#include "model/current_readings.h"
#include "platform/media_control.h"
#include "records/alarm_controls.h"
#include "records/messages.h"

class QWidget;

namespace skyhold {

// `media` plays the previews of the sound chooser; `showMessage`, which outlives the page, offers
// to switch an alarm on that was given a sound.
QWidget* makeUnsafePage(ConditionControls& conditions, AlarmControls& alarms,
                        CurrentReadings& readings, MediaControl& media,
                        const ShowMessage& showMessage, QWidget* parent);

} // namespace skyhold
