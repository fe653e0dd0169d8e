// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/remember.h"

#include "conditions/rule_values.h"
#include "core/monitoring_core.h"
#include "core/state_document.h"
#include "core/verdict.h"
#include "core/wording.h"
#include "history/json.h"
#include "platform/log.h"
#include "records/status_lines.h"

#include <QJsonArray>

#include <algorithm>
#include <cmath>
#include <utility>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

HistoryKeep keepOf(const HistoryControls& controls) {
    const auto whole = [](const NumberBox& box) {
        return static_cast<int>(box.Value.value());
    };
    return {whole(controls.CycleDays), whole(controls.EventYears), whole(controls.Megabytes)};
}

// Which causes stand: a change of their values alone is no event.
QString causesOf(const MonitoringCore& core) {
    const CycleResult& result = core.result;
    QString text = result.distrusted;
    if (result.judgement.byClient)
        text += u"|by "_s + core.records.session.LblControl.Caption.value();
    if (result.roof.faulty)
        text += u"|roof"_s;
    if (result.judgement.UnsafeFlag) {
        for (const Cause& cause : result.judgement.causes)
            text += u"|%1 %2 %3 %4"_s.arg(static_cast<int>(cause.kind))
                        .arg(static_cast<int>(cause.quantity))
                        .arg(static_cast<int>(cause.source))
                        .arg(cause.level);
    }
    return text;
}

QString inWords(const QJsonArray& causes) {
    QStringList texts;
    for (const auto& cause : causes)
        texts += cause[u"text"_s].toString();
    return texts.join(u"; "_s);
}

void add(MonitoringCore& core, std::int64_t atMs, const QString& kind, const QString& name,
         const QString& state, const QString& text, const QJsonObject& detail = {}) {
    core.history.add(HistoryEvent{atMs, kind, name, state, text, detail});
}

void rememberVerdict(MonitoringCore& core, std::int64_t atMs) {
    Remembered& last = core.remembered;
    const bool running = core.records.session.running();
    const Verdict verdict = running ? core.records.session.verdict.value() : Verdict::None;
    const QString causes = verdict == Verdict::None ? QString() : causesOf(core);
    if (verdict == last.verdict && causes == last.causes)
        return;
    last.verdict = verdict;
    last.causes = causes;
    const QJsonObject document = stateDocument(core);
    QJsonObject detail;
    for (const QString& part : {u"causes"_s, u"decided_by"_s, u"controller"_s})
        detail[part] = document[part];
    const QString words = inWords(document[u"causes"_s].toArray());
    qCInfo(verdictLog).noquote() << verdictName(verdict) << words;
    add(core, atMs, u"verdict"_s, {}, verdictName(verdict), words, detail);
}

void rememberSession(MonitoringCore& core, std::int64_t atMs) {
    const bool running = core.records.session.running();
    if (std::exchange(core.remembered.running, running) == running)
        return;
    if (running) {
        core.history.keep(keepOf(core.records.historyKeep));
        const int seconds = core.records.session.RefreshRead.chosenSeconds();
        add(core, atMs, u"session"_s, {}, u"started"_s,
            u"Session started, a cycle every %1 s"_s.arg(seconds),
            {{u"interval_s"_s, seconds}, {u"version"_s, core.version.text()}});
    } else {
        add(core, atMs, u"session"_s, {}, u"stopped"_s, u"Session stopped"_s);
    }
}

void rememberSources(MonitoringCore& core, std::int64_t atMs) {
    const Observation& seen = core.result.observation;
    Remembered& last = core.remembered;
    const SourceState station = stationState(seen.station);
    const bool stationChanged = std::exchange(last.station, station) != station;
    const bool sensorChanged = std::exchange(last.sensor, seen.sensor.state) != seen.sensor.state;
    if (!stationChanged && !sensorChanged)
        return;
    const QJsonObject sources = stateDocument(core)[u"sources"_s].toObject();
    const auto report = [&](const QString& name, const QString& title) {
        const QJsonObject source = sources[name].toObject();
        const QString state = source[u"state"_s].toString();
        const QString detail = source[u"detail"_s].toString();
        add(core, atMs, u"source"_s, name, state,
            title + u' ' + state + (detail.isEmpty() ? QString() : u": "_s + detail));
    };
    if (stationChanged)
        report(u"station"_s, u"Weather station"_s);
    if (sensorChanged)
        report(u"sensor"_s, u"Sensor program"_s);
}

void rememberAlarm(MonitoringCore& core, std::int64_t atMs) {
    const QString alarm =
        core.records.alarms.ButtStopAlarm.Visible ? core.records.readings.AlarmSoundId : QString();
    const QString before = std::exchange(core.remembered.alarm, alarm);
    if (before == alarm)
        return;
    if (!before.isEmpty())
        add(core, atMs, u"alarm"_s, before, u"off"_s, u"Alarm %1 ended"_s.arg(before));
    if (!alarm.isEmpty())
        add(core, atMs, u"alarm"_s, alarm, u"on"_s, u"Alarm %1 sounds"_s.arg(alarm));
}

void rememberRoof(MonitoringCore& core, std::int64_t atMs) {
    const double roof = core.records.readings.SwitchValue;
    if (std::exchange(core.remembered.roof, roof) == roof)
        return;
    const QString state = roof == kRoofOpen     ? u"open"_s
                          : roof == kRoofClosed ? u"closed"_s
                                                : u"unknown"_s;
    const bool driven = core.records.session.SwitchControl;
    const QString text = !driven             ? u"Roof switch reads %1"_s.arg(state)
                         : roof == kRoofOpen ? u"Command to open the roof"_s
                                             : u"Command to close the roof"_s;
    add(core, atMs, u"roof"_s, driven ? u"command"_s : u"read"_s, state, text);
}

// Between the roof and what it was commanded to do, for longer than is allowed.
void rememberRoofFault(MonitoringCore& core, std::int64_t atMs) {
    const bool faulty = core.result.roof.faulty;
    if (std::exchange(core.remembered.roofFaulty, faulty) == faulty)
        return;
    add(core, atMs, u"roof"_s, u"check"_s, faulty ? u"failed"_s : u"ok"_s,
        faulty ? roofText(core.result) : u"Roof is where it should be"_s);
}

QStringList labelsOf(const ConditionControls& controls) {
    QStringList labels;
    for (const QuantityRow& row : quantityTable()) {
        for (std::size_t i = 0; i < kLevelCount; ++i)
            labels += row.hasLimits() ? controls.Color[row.quantity][i].Caption.value()
                                      : controls.Cond[row.quantity][i].Caption.value();
    }
    return labels;
}

// By the quantity's name: limits, armed levels and the words for the levels.
QJsonObject limitsOf(const Rules& rules, const QStringList& labels) {
    QJsonObject all;
    for (const QuantityRow& row : quantityTable()) {
        QJsonArray armed;
        QJsonArray words;
        QJsonArray limits;
        for (std::size_t i = 0; i < kLevelCount; ++i) {
            if (rules.levels[row.quantity].unsafe[i])
                armed.append(static_cast<int>(i) + 1);
            if (row.hasLimits())
                limits.append(rules.levels[row.quantity].limits[i]);
            const std::size_t label = kLevelCount * static_cast<std::size_t>(row.quantity) + i;
            words.append(labels[static_cast<qsizetype>(label)]);
        }
        QJsonObject shown{{u"armed"_s, armed}, {u"labels"_s, words}};
        if (row.hasLimits())
            shown[u"limits"_s] = limits;
        all[QLatin1String(row.key)] = shown;
    }
    return all;
}

void rememberRules(MonitoringCore& core, std::int64_t atMs) {
    const Rules& rules = core.result.rules;
    Remembered& last = core.remembered;
    QStringList labels = labelsOf(core.records.conditions);
    if (last.rules == rules && last.labels == labels)
        return;
    const QString changes = last.rules ? ruleChanges(*last.rules, rules) : QString();
    const QString text = !last.rules         ? u"Limits in force"_s
                         : changes.isEmpty() ? u"Descriptions changed"_s
                                             : u"Limits changed: "_s + changes;
    add(core, atMs, u"limits"_s, {}, last.rules ? u"changed"_s : u"loaded"_s, text,
        {{u"rules"_s, rulesObject(rules)}, {u"readings"_s, limitsOf(rules, labels)}});
    last.rules = rules;
    last.labels = std::move(labels);
}

// A disk that cannot be written, once when it begins and once when it is over.
void showFault(MonitoringCore& core) {
    const QString fault = core.history.state().fault;
    if (std::exchange(core.remembered.fault, fault) == fault)
        return;
    if (fault.isEmpty())
        SetStatusText(core.records.session.Statusbar1, u"History is written again"_s, kDarkGreen);
    else
        SetStatusText(core.records.session.Statusbar1, u"History not written: "_s + fault, kRed);
}

} // namespace

SourceState stationState(const StationObservation& station) {
    return station.usable() && station.faulty() ? SourceState::Unusable : station.state;
}

void historyRules(HistoryControls& controls) {
    const auto keepBetween = [](NumberBox& box, double lowest, double highest) {
        box.Change = [&box, lowest, highest] {
            box.Value = std::clamp(std::round(box.Value), lowest, highest);
        };
    };
    keepBetween(controls.CycleDays, 1, 3'660);
    keepBetween(controls.EventYears, 1, 50);
    keepBetween(controls.Megabytes, 16, 65'536);
}

void beginHistory(MonitoringCore& core) {
    core.history.begin(historyPath(), keepOf(core.records.historyKeep));
}

void rememberCycle(MonitoringCore& core) {
    if (!core.history.state().on)
        return;
    const std::int64_t atMs = core.result.judged.utcMs;
    rememberRules(core, atMs);
    rememberSources(core, atMs);
    rememberVerdict(core, atMs);
    rememberAlarm(core, atMs);
    rememberRoof(core, atMs);
    rememberRoofFault(core, atMs);
    core.history.add(keptCycle(core.result, core.records.session.verdict));
    showFault(core);
}

void rememberState(MonitoringCore& core) {
    if (!core.history.state().on)
        return;
    const std::int64_t nowMs = momentOf(core.clock).utcMs;
    rememberSession(core, nowMs);
    rememberVerdict(core, nowMs);
    rememberAlarm(core, nowMs);
    rememberRoof(core, nowMs);
}

} // namespace skyhold
