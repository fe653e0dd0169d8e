// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window/health_facts.h"

#include "core/wording.h"
#include "ui/window/age_text.h"
#include "ui/window/panel_facts.h"

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

// The session has judged a reading.
bool reads(const MonitoringCore& core) {
    const SessionControls& session = core.records.session;
    return session.begun() && session.verdict != Verdict::None;
}

// The word of what is not read, or of what nothing is known yet.
QString wordBefore(const SessionControls& session) {
    switch (session.State) {
    case SessionState::Idle:
        break;
    case SessionState::Starting:
        return u"awaited"_s;
    case SessionState::Running:
        return session.flgReadStation.checked() ? u"awaited"_s : u"not read"_s;
    }
    return u"not read"_s;
}

QString stateWord(SourceState state) {
    switch (state) {
    case SourceState::Ok:
        return u"ok"_s;
    case SourceState::Old:
        return u"old"_s;
    case SourceState::Unusable:
        return u"unusable"_s;
    case SourceState::Failed:
        return u"failed"_s;
    case SourceState::Absent:
        break;
    }
    return u"absent"_s;
}

void showAge(HealthFact& fact, const QString& word, const QDateTime& read, const QDateTime& now) {
    const QString age = ageText(read, now, 0).remove(u" ago"_s);
    fact.word = age.isEmpty() ? word : word + u' ' + age;
    fact.brief = word;
}

// What stands below a source without a date of its own.
QString lastLine(const QDateTime& read, const Records& records) {
    if (!read.isValid())
        return {};
    const bool dayFirst = records.units.DateFormat.Index == 0;
    return u"last "_s + formatDate(read, dayFirst ? u"dd/mm hh:mm" : u"mm/dd hh:mm");
}

HealthFact sensor(const MonitoringCore& core) {
    const Records& records = core.records;
    HealthFact fact{.name = u"Sensor"_s, .word = wordBefore(records.session)};
    if (!reads(core))
        return fact;
    // At its start a session has no reading yet, and the time of its start stands for it.
    const CurrentReadings& readings = records.readings;
    const SensorObservation& observed = core.result.observation.sensor;
    const bool known = !observed.failed() || readings.LastReading != readings.ReadingStart;
    fact.shape = observed.failed() ? HealthShape::Failed : HealthShape::Working;
    showAge(fact, stateWord(observed.state), known ? readings.LastReading : QDateTime(),
            core.clock.now());
    return fact;
}

HealthFact station(const MonitoringCore& core) {
    const Records& records = core.records;
    HealthFact fact{.name = u"Station"_s, .word = wordBefore(records.session)};
    if (!reads(core))
        return fact;
    const StationObservation& observed = core.result.observation.station;
    fact.shape = observed.faulty() ? HealthShape::Failed : HealthShape::Working;
    fact.warns = stationAge(core.result, core.clock.MsClock()).ageing;
    const bool gap = observed.usable() && observed.valuesMissing;
    showAge(fact, gap ? u"gaps"_s : stateWord(observed.state), records.readings.StationDateTime,
            core.clock.now());
    fact.help = gap ? u"Values that are judged are missing"_s : observed.detail;
    if (records.display.Label3Station.Caption.value().isEmpty())
        fact.line = lastLine(observed.recordTime, records);
    return fact;
}

HealthFact cycle(const MonitoringCore& core) {
    const SessionControls& session = core.records.session;
    if (!reads(core)) {
        const bool idle = session.State == SessionState::Idle;
        HealthFact fact{.name = u"Cycle"_s, .word = idle ? u"stopped"_s : wordBefore(session)};
        if (idle && session.CyclesDone > 0)
            fact.line = u"%1 done"_s.arg(session.CyclesDone.value());
        return fact;
    }
    const int interval = core.result.intervalSeconds;
    const QString every = interval > 0 ? u"every %1 s"_s.arg(interval) : QString();
    if (core.TimerRead.overdue())
        return {.name = u"Cycle"_s,
                .shape = HealthShape::Failed,
                .word = u"late"_s,
                .line = every,
                .help = u"The next reading has not come"_s};
    const std::int64_t left = secondsToCycle(core.result, core.clock.MsClock());
    HealthFact fact{.name = u"Next cycle"_s,
                    .shape = HealthShape::Filling,
                    .word = left > 0 ? u"%1 s"_s.arg(left) : u"due"_s,
                    .line = every,
                    .help = u"When the sources are read again"_s};
    if (interval > 0)
        fact.share = 1 - static_cast<double>(left) / interval;
    return fact;
}

HealthFact recording(const MonitoringCore& core) {
    const DataFileControls& file = core.records.dataFile;
    const HistoryState history = core.history.state();
    const Colour lamp = file.LEDRecord.FillColor;
    HealthFact fact{.name = u"Recording"_s};
    if (!history.fault.isEmpty() || lamp == kRed) {
        fact.shape = HealthShape::Failed;
        fact.word = u"failed"_s;
        fact.line = lamp == kRed ? u"data file"_s : u"history"_s;
        fact.help = history.fault.isEmpty() ? u"Lines of the data file are lost"_s
                                            : u"The history is not written: "_s + history.fault;
        return fact;
    }
    const bool written = lamp == kGreen;
    const bool kept = history.on && core.records.session.begun();
    fact.shape = written || kept ? HealthShape::Working : HealthShape::Off;
    fact.word = written || kept ? u"on"_s : u"off"_s;
    if (written) {
        fact.help = file.LblRecorded.Caption;
        fact.line = fact.help.section(u": "_s, -1).section(u',', 0, 0); // "12 lines"
    } else if (kept) {
        fact.help = u"The history is written; no data file is"_s;
        fact.line = u"history only"_s;
    } else {
        fact.help = u"Nothing is recorded"_s;
    }
    return fact;
}

HealthFact upload(const Records& records) {
    // Both texts begin with their times, as "2026-11-16 20:38:05".
    const QString& success = records.upload.LastSuccess.Caption.value();
    const QString& error = records.upload.LastError.Caption.value();
    const auto timeOf = [](const QString& text) {
        return text.mid(11, 5);
    };
    const QString last = success.isEmpty() ? QString() : u"last "_s + timeOf(success);
    if (records.session.flgUpload.Value != 1)
        return {
            .name = u"Upload"_s, .word = u"off"_s, .line = last, .help = u"Nothing is uploaded"_s};
    if (!error.isEmpty() && error > success)
        return {.name = u"Upload"_s,
                .shape = HealthShape::Failed,
                .word = u"failed"_s,
                .line = u"at "_s + timeOf(error),
                .help = u"The last upload failed: "_s + error};
    return {.name = u"Upload"_s,
            .shape = HealthShape::Working,
            .word = success.isEmpty() ? u"on"_s : u"ok"_s,
            .line = success.isEmpty() ? u"none yet"_s : last,
            .help =
                success.isEmpty() ? u"Nothing was uploaded yet"_s : u"Last upload: "_s + success};
}

HealthFact network(const NetworkControls& network) {
    HealthFact fact{
        .name = u"Network"_s, .word = u"off"_s, .help = network.StateText.Caption.value()};
    switch (network.State.value()) {
    case GatewayState::Off:
        fact.help = u"Nothing is served to the network"_s;
        break;
    case GatewayState::Starting:
        fact.word = u"starting"_s;
        break;
    case GatewayState::Serving:
        fact.shape = HealthShape::Working;
        fact.word = u"on"_s;
        fact.line = u"port %1"_s.arg(network.Port.Value.value());
        break;
    case GatewayState::Failed:
        fact.shape = HealthShape::Failed;
        fact.word = u"failed"_s;
        fact.line = u"is tried again"_s;
        break;
    }
    return fact;
}

int armedAlarms(const AlarmControls& alarms) {
    int armed = 0;
    for (const CheckBox* source : {&alarms.AlarmWS, &alarms.AlarmNB, &alarms.AlarmRoof})
        armed += source->checked() ? 1 : 0;
    for (const ThreeChecks& quantity : alarms.Alarm) {
        for (const CheckBox& level : quantity)
            armed += level.checked() ? 1 : 0;
    }
    return armed;
}

HealthFact alarms(const MonitoringCore& core) {
    const Records& records = core.records;
    const AlarmControls& alarms = records.alarms;
    const QString& id = records.readings.AlarmSoundId;
    HealthFact fact{.name = u"Alarms"_s};
    const int armed = armedAlarms(alarms);
    if (armed > 0)
        fact.line = armed == 1 ? u"1 is set"_s : u"%1 are set"_s.arg(armed);
    if (const QString& fault = alarms.SoundFault.Caption.value(); !fault.isEmpty()) {
        fact.shape = HealthShape::Failed;
        fact.word = u"cannot sound"_s;
        fact.brief = u"no sound"_s;
        fact.help = fault;
    } else if (!id.isEmpty()) {
        fact.help = alarmText(id, core.result, records.conditions);
        fact.shape = HealthShape::Sounding;
        fact.word = u"sounding"_s;
        fact.line = fact.help.section(u"Alarm: "_s, -1);
    } else if (alarms.SuspendSoundAlarm.checked()) {
        fact.word = u"silenced"_s;
        fact.help = u"Alarms are silenced"_s;
    } else if (armed > 0) {
        const bool on = records.session.begun();
        fact.shape = on ? HealthShape::Armed : HealthShape::Off;
        fact.word = on ? u"armed"_s : u"quiet"_s;
        fact.help = on ? u"Alarms are on"_s : u"Alarms sound while a session runs"_s;
    } else {
        fact.word = u"off"_s;
        fact.help = u"No alarm is on"_s;
    }
    return fact;
}

} // namespace

HealthFacts healthFacts(const MonitoringCore& core) {
    return {sensor(core),    station(core),        cycle(core),
            recording(core), upload(core.records), network(core.records.network),
            alarms(core)};
}

} // namespace skyhold
