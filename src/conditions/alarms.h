// SPDX-License-Identifier: GPL-3.0-or-later
// Alarms: when a sound starts and stops, and who owns it. `AlarmSoundId` is the alarm that owns the
// sound (its ids: judge/alarm_choice.h). It stays when the user stops the sound, so that the same
// alarm does not begin again before it has ended or another one has won.
#pragma once

#include "judge/alarm_choice.h"
#include "model/current_readings.h"
#include "model/observation.h"
#include "platform/media_control.h"
#include "platform/timer.h"
#include "records/alarm_controls.h"

#include <functional>

namespace skyhold {

// The ids of alarms that are not of a condition.
inline const QString kStationAlarm = QStringLiteral("10");
inline const QString kSensorAlarm = QStringLiteral("20");
// Goes before the others, since it asks for hands.
inline const QString kRoofAlarm = QStringLiteral("30");

// What it takes to sound an alarm.
struct AlarmPlayer {
    MediaControl& media;
    Timer& TimerPlayer; // runs while a sound is started
    AlarmControls& controls;
};

// What the tag of an alarm box says.
struct SoundSpec {
    QString file;
    bool repeat = false;
};

// The text before the last "|", played in a loop; without a "|" the whole text, played once.
SoundSpec parseSound(const QString& spec);

// True when the sound was opened and started.
bool startSound(MediaControl& media, const SoundSpec& sound);
void stopSound(MediaControl& media);

// Ends what sounds, then starts `spec` with its timer and the Stop Alarm button. Silence remains
// when its file is missing or cannot be opened.
void AlarmStart(const AlarmPlayer& player, const QString& spec);
// Ends the sound and takes timer, button and indicator back.
void AlarmStop(const AlarmPlayer& player);
// Shows why a sound is not heard, until the next one is started.
void reportSilence(AlarmControls& controls, const QString& reason);
// Silence, and no alarm owns the sound.
void releaseAlarm(const AlarmPlayer& player, CurrentReadings& readings);
// Takes timer and button back once the sound has ended.
void TimerPlayer_Tick(const AlarmPlayer& player);

// Lights the indicator of the id's alarm and no other; an empty id lights none.
void ShowPlayingAlarm(AlarmControls& controls, const QString& id);
void SetAlarmIcons(CheckBox& box, bool hasSound);

// Lets the alarm that a cycle's judgement chose sound.
void soundChosenAlarm(const AlarmChoice& choice, const AlarmPlayer& player,
                      CurrentReadings& readings);

// The alarm of old or missing station data, and its end. `stopSensorAlarm` silences the sensor
// program's own alarm.
void StationDataAlarm(StationFileState state, const AlarmPlayer& player, CurrentReadings& readings,
                      const std::function<void()>& stopSensorAlarm);
// The same for the sensor program.
void SensorFailureAlarm(bool failed, const AlarmPlayer& player, CurrentReadings& readings,
                        const std::function<void()>& stopSensorAlarm);

// The same for a roof that is not where it was told to be.
void RoofAlarm(bool faulty, const AlarmPlayer& player, CurrentReadings& readings,
               const std::function<void()>& stopSensorAlarm);

// Suspending stops the sound; lifting it releases the alarm, so that the next cycle may start it.
void SuspendSoundAlarm_Click(const AlarmPlayer& player, CurrentReadings& readings);

// A mouse button was released over an alarm box. The right one (2) opens the sound chooser, which
// returns when it has been closed; a changed sound can start afterwards.
void EditAlarmSound(int button, CheckBox& box, CurrentReadings& readings,
                    const std::function<void(CheckBox&)>& openChooser);

} // namespace skyhold
