#include "core/alarms.h"

namespace skyhold {

AlarmPlayer alarmPlayer(MonitoringCore& core) {
    return {core.media, core.TimerPlayer, core.records.alarms};
}

void AlarmStart(MonitoringCore& core, const QString& spec) {
    AlarmStart(alarmPlayer(core), spec);
}

void AlarmStop(MonitoringCore& core) {
    AlarmStop(alarmPlayer(core));
}

void stopSensorAlarm(SensorLink& sensor) {
    sensor.call(QStringLiteral("Kiv_AlarmStop"));
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
