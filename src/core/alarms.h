// SPDX-License-Identifier: GPL-3.0-or-later
// The core's alarms: what their rules need of it.
#pragma once

#include "conditions/alarms.h"
#include "core/monitoring_core.h"

namespace skyhold {

AlarmPlayer alarmPlayer(MonitoringCore& core);

// Sounds `spec`, a file or a file and "|repeat", whichever alarm owns the sound.
void startAlarm(MonitoringCore& core, const QString& spec);
// The Stop Alarm button and automation: silence, but the alarm keeps the sound it owns.
void stopAlarm(MonitoringCore& core);

// The alarms of the two sources, and the one of the conditions that the judgement chooses.
void soundStationAlarm(MonitoringCore& core, const StationObservation& station);
void soundSensorAlarm(MonitoringCore& core, const SensorObservation& sensor);
void soundRoofAlarm(MonitoringCore& core, bool faulty);
void soundConditionAlarm(MonitoringCore& core, const CycleResult& result);

// The tick of the player's timer, the click rule of the suspending box, and what is shown when a
// sound is not heard.
void alarmRules(MonitoringCore& core);

} // namespace skyhold
