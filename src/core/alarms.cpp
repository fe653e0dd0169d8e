// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/alarms.h"

#include "conditions/rules_of.h"

namespace skyhold {

namespace {

// The sensor program's own alarm gives way to one of this program.
void stopSensorAlarm(SensorLink& sensor) {
    sensor.call(QStringLiteral("Kiv_AlarmStop"));
}

} // namespace

AlarmPlayer alarmPlayer(MonitoringCore& core) {
    return {core.media, core.TimerPlayer, core.records.alarms};
}

void startAlarm(MonitoringCore& core, const QString& spec) {
    AlarmStart(alarmPlayer(core), spec);
}

void stopAlarm(MonitoringCore& core) {
    AlarmStop(alarmPlayer(core));
}

void soundStationAlarm(MonitoringCore& core, const StationObservation& station) {
    StationDataAlarm(station.alarmState(), alarmPlayer(core), core.records.readings,
                     [&core] { stopSensorAlarm(core.sensor); });
}

void soundSensorAlarm(MonitoringCore& core, const SensorObservation& sensor) {
    SensorFailureAlarm(sensor.failed(), alarmPlayer(core), core.records.readings,
                       [&core] { stopSensorAlarm(core.sensor); });
}

void soundRoofAlarm(MonitoringCore& core, bool faulty) {
    RoofAlarm(faulty, alarmPlayer(core), core.records.readings,
              [&core] { stopSensorAlarm(core.sensor); });
}

void soundConditionAlarm(MonitoringCore& core, const CycleResult& result) {
    const Observation& seen = result.observation;
    CurrentReadings& readings = core.records.readings;
    const AlarmChoice choice = SelectConditionAlarm(
        result.judgement, result.rules, alarmRulesOf(core.records.alarms),
        seen.station.faulty() || seen.sensor.failed() || result.roof.faulty, readings.AlarmSoundId);
    soundChosenAlarm(choice, alarmPlayer(core), readings);
}

void alarmRules(MonitoringCore& core) {
    core.media.silent = [&core](const QString& reason) {
        reportSilence(core.records.alarms, reason);
    };
    core.TimerPlayer.Tick = [&core] {
        TimerPlayer_Tick(alarmPlayer(core));
    };
    core.records.alarms.SuspendSoundAlarm.Click = [&core] {
        SuspendSoundAlarm_Click(alarmPlayer(core), core.records.readings);
    };
}

} // namespace skyhold
