// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/state_document.h"

#include "core/verdict.h"
#include "core/wording.h"
#include "judge/nearest.h"
#include "model/compass.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <cmath>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

QJsonValue timeValue(std::int64_t utcMs) {
    if (utcMs <= 0)
        return QJsonValue::Null;
    return QDateTime::fromMSecsSinceEpoch(utcMs, Qt::UTC).toString(Qt::ISODate);
}

QJsonValue timeValue(const QDateTime& time) {
    return time.isValid() ? timeValue(time.toMSecsSinceEpoch()) : QJsonValue(QJsonValue::Null);
}

// Without the noise of binary fractions: nothing here is measured to a millionth.
QJsonValue numberValue(std::optional<double> value) {
    if (!value || !std::isfinite(*value))
        return QJsonValue::Null;
    return std::round(*value * 1e6) / 1e6;
}

QJsonObject measured(std::optional<double> value, const QString& unit) {
    return {{u"value"_s, numberValue(value)}, {u"unit"_s, unit}};
}

QString unitOf(Quantity quantity, const CycleResult& result) {
    return unitText(rowOf(quantity).measure, result.temperatureUnit, result.speedUnit);
}

QJsonObject reading(Quantity quantity, const MonitoringCore& core) {
    const CycleResult& result = core.result;
    const std::int32_t level = result.judgement.levels[quantity];
    QJsonArray armed;
    for (std::size_t i = 0; i < kLevelCount; ++i) {
        if (result.rules.levels[quantity].unsafe[i])
            armed.append(static_cast<int>(i) + 1);
    }
    QJsonObject shown = measured(result.observation.values[quantity], unitOf(quantity, result));
    shown[u"level"_s] = level;
    shown[u"label"_s] = levelLabel(quantity, result, core.records.conditions);
    shown[u"unsafe"_s] = result.judgement.unsafe[quantity];
    shown[u"beyond"_s] = result.judgement.beyond[quantity];
    shown[u"armed"_s] = armed;
    shown[u"since"_s] = timeValue(result.memory.levelSince[quantity]);
    if (rowOf(quantity).hasLimits()) {
        QJsonArray limits;
        for (const double limit : result.rules.levels[quantity].limits)
            limits.append(limit);
        shown[u"limits"_s] = limits;
    }
    return shown;
}

QJsonValue compassLabel(std::optional<double> direction) {
    if (!direction || !std::isfinite(*direction))
        return QJsonValue::Null;
    const auto point = static_cast<std::size_t>(std::lround(*direction / 22.5));
    return QLatin1String(kCompassPoints[point % kCompassPoints.size()]);
}

QJsonObject readings(const MonitoringCore& core) {
    const CycleResult& result = core.result;
    const StationObservation& station = result.observation.station;
    const SensorObservation& sensor = result.observation.sensor;
    const QString degrees = unitOf(Quantity::Temperature, result);
    QJsonObject all;
    for (const QuantityRow& row : quantityTable())
        all[QLatin1String(row.key)] = reading(row.quantity, core);
    QJsonObject direction = measured(station.windDirection, u"°"_s);
    direction[u"compass"_s] = compassLabel(station.windDirection);
    all[u"wind_direction"_s] = direction;
    all[u"dew_point"_s] = measured(station.numbers[Quantity::Dew], degrees);
    all[u"pressure"_s] = measured(
        station.pressure, core.records.display.stationValue(StationEntry::PressureUnit).Caption);
    all[u"ambient_temperature"_s] = measured(sensor.ambientTemperature, degrees);
    all[u"sensor_temperature"_s] = measured(sensor.skySensorTemperature, degrees);
    QJsonObject heater = measured(sensor.rainHeaterPercent, u"%"_s);
    heater[u"label"_s] = sensor.rainHeaterStatus.value_or(QString());
    all[u"rain_heater"_s] = heater;
    return all;
}

QString stateText(SourceState state) {
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

QJsonValue ageSeconds(const QDateTime& then, const CycleResult& result) {
    if (!then.isValid() || result.number == 0)
        return QJsonValue::Null;
    // A station's clock may be ahead.
    return std::max<qint64>(result.end.utcMs - then.toMSecsSinceEpoch(), 0) / 1000;
}

QJsonObject sources(const CycleResult& result, bool dataReady) {
    const SensorObservation& sensor = result.observation.sensor;
    const StationObservation& station = result.observation.station;
    // A dead instrument makes a station that can be read unusable in part.
    const SourceState stationState =
        station.usable() && station.faulty() ? SourceState::Unusable : station.state;
    return {{u"sensor"_s, QJsonObject{{u"state"_s, stateText(sensor.state)},
                                      {u"read"_s, timeValue(sensor.lastReading)},
                                      {u"age_s"_s, ageSeconds(sensor.lastReading, result)},
                                      {u"ready"_s, dataReady},
                                      {u"detail"_s, QString()}}},
            {u"station"_s, QJsonObject{{u"state"_s, stateText(stationState)},
                                       {u"written"_s, timeValue(station.written)},
                                       {u"read"_s, timeValue(station.recordTime)},
                                       {u"age_s"_s, ageSeconds(station.recordTime, result)},
                                       {u"detail"_s, station.detail}}}};
}

QJsonObject causeValue(const Cause& cause, const CycleResult& result,
                       const ConditionControls& controls) {
    QJsonObject value{{u"since"_s, timeValue(cause.sinceUtcMs)},
                      {u"text"_s, causeText(cause, result, {})}};
    if (cause.kind == CauseKind::Source) {
        value[u"kind"_s] = u"source"_s;
        value[u"name"_s] = cause.source == SourceName::Sensor ? u"sensor"_s : u"station"_s;
        return value;
    }
    const QuantityRow& row = rowOf(cause.quantity);
    const bool beyond = cause.kind == CauseKind::Beyond;
    value[u"kind"_s] = beyond ? u"beyond"_s : u"level"_s;
    value[u"name"_s] = QLatin1String(row.key);
    value[u"level"_s] = cause.level;
    if (!beyond)
        value[u"label"_s] = levelLabel(cause.quantity, result, controls);
    value[u"value"_s] = numberValue(result.observation.values[cause.quantity]);
    value[u"unit"_s] = unitOf(cause.quantity, result);
    if (!row.hasLimits())
        return value;
    const auto& limits = result.rules.levels[cause.quantity].limits;
    const bool firstLevel = cause.level == 1;
    const std::size_t limit = beyond       ? kLevelCount - 1
                              : firstLevel ? 0
                                           : static_cast<std::size_t>(cause.level - 2);
    value[u"limit"_s] = limits[limit];
    value[u"relation"_s] = firstLevel ? u"<="_s : u">"_s;
    return value;
}

QJsonObject plainCause(const QString& kind, const QString& text, std::int64_t sinceUtcMs) {
    return {{u"kind"_s, kind},
            {u"name"_s, QString()},
            {u"since"_s, timeValue(sinceUtcMs)},
            {u"text"_s, text}};
}

QJsonValue nearestValue(const CycleResult& result) {
    const std::optional<NearestLimit> nearest =
        nearestLimit(result.observation, result.rules, result.judgement);
    if (!nearest)
        return QJsonValue::Null;
    return QJsonObject{{u"name"_s, QLatin1String(rowOf(nearest->quantity).key)},
                       {u"value"_s, numberValue(nearest->value)},
                       {u"limit"_s, numberValue(nearest->limit)},
                       {u"relation"_s, nearest->above ? u">"_s : u"<="_s},
                       {u"share"_s, std::round(nearest->share * 1000) / 1000},
                       {u"text"_s, nearestText(result, {})}};
}

// The verdict that the window shows; none without a session, though the window still shows the
// last one.
QString verdictText(const SessionControls& session) {
    if (!session.running())
        return u"none"_s;
    switch (session.verdict.value()) {
    case Verdict::Safe:
        return u"safe"_s;
    case Verdict::Waiting:
        return u"waiting"_s;
    case Verdict::Unsafe:
        return u"unsafe"_s;
    case Verdict::None:
        break;
    }
    return u"none"_s;
}

QJsonArray causes(const MonitoringCore& core, const QString& verdict) {
    const CycleResult& result = core.result;
    if (verdict == u"safe")
        return {};
    if (verdict == u"none")
        return {plainCause(u"session"_s,
                           core.records.session.State == SessionState::Starting
                               ? u"Waiting for Kiv_Nubilo"_s
                               : u"No monitoring session is running"_s,
                           result.end.utcMs)};
    if (!result.distrusted.isEmpty())
        return {plainCause(u"session"_s, result.distrusted, result.memory.verdictSince)};
    QJsonArray all;
    if (result.judgement.byClient)
        all.append(plainCause(u"control"_s,
                              u"Unsafe by "_s + core.records.session.LblControl.Caption.value(),
                              result.memory.verdictSince));
    if (result.roof.faulty)
        all.append(plainCause(u"roof"_s, roofText(result), result.roof.since.utcMs));
    for (const Cause& cause : result.judgement.causes)
        all.append(causeValue(cause, result, core.records.conditions));
    if (result.judgement.waiting())
        all.append(plainCause(u"delay"_s, delayText(result), result.memory.lastUnsafeUtcMs));
    return all;
}

// No source that counts is old or failed, and the last cycle is no older than it may be.
bool sourcesGood(const MonitoringCore& core) {
    const Observation& observation = core.result.observation;
    const Rules& rules = core.result.rules;
    return !(rules.stationOldIsUnsafe && observation.station.faulty()) &&
           !(rules.sensorFailedIsUnsafe && observation.sensor.failed()) &&
           !core.TimerRead.overdue();
}

QJsonObject roof(const MonitoringCore& core) {
    const auto name = [](double value) {
        return value == 1 ? u"open"_s : value == 2 ? u"closed"_s : QString();
    };
    const bool driven = core.records.session.SwitchControl;
    const QString state = name(core.records.readings.SwitchValue);
    return {{u"driven"_s, driven},
            {u"told"_s, driven ? state : QString()},
            {u"state"_s,
             state.isEmpty() || core.result.observation.sensor.failed() ? u"unknown"_s : state},
            {u"fault"_s, roofText(core.result)}};
}

QJsonObject history(const HistoryState& state) {
    return {{u"on"_s, state.on},
            {u"fault"_s, state.fault},
            {u"lost_readings"_s, static_cast<qint64>(state.lostReadings)},
            {u"lost_events"_s, static_cast<qint64>(state.lostEvents)},
            {u"bytes"_s, static_cast<qint64>(state.fileBytes)}};
}

QString sessionText(SessionState state) {
    switch (state) {
    case SessionState::Running:
        return u"running"_s;
    case SessionState::Starting:
        return u"starting"_s;
    case SessionState::Idle:
        break;
    }
    return u"idle"_s;
}

} // namespace

QJsonObject stateDocument(const MonitoringCore& core) {
    const CycleResult& result = core.result;
    const Records& records = core.records;
    const QString verdict = verdictText(records.session);
    const QString codes = records.session.Statusbar2.Caption;
    return {
        {u"schema"_s, kStateSchema},
        {u"monitor"_s, QJsonObject{{u"name"_s, u"Kiv_Skyhold"_s},
                                   {u"version"_s, u"%1.%2.%3"_s.arg(core.version.major)
                                                      .arg(core.version.minor)
                                                      .arg(core.version.revision)},
                                   {u"site"_s, u"Kiv_Skyhold"_s}}},
        {u"time"_s, timeValue(result.number > 0 ? result.end.utcMs : momentOf(core.clock).utcMs)},
        {u"cycle"_s, static_cast<qint64>(result.number)},
        {u"interval_s"_s, records.session.RefreshRead.chosenSeconds()},
        {u"session"_s, sessionText(core.records.session.State)},
        {u"safe"_s, verdict == u"safe" && sourcesGood(core)},
        {u"verdict"_s, verdict},
        {u"since"_s, timeValue(verdict == u"none" ? 0 : result.memory.verdictSince)},
        {u"wait_s"_s, verdict == u"waiting" ? result.judgement.waitSeconds : 0},
        {u"decided_by"_s, result.judgement.byClient ? u"client"_s : u"rules"_s},
        {u"controller"_s,
         result.judgement.byClient ? records.session.LblControl.Caption.value() : QString()},
        {u"causes"_s, causes(core, verdict)},
        {u"nearest"_s, verdict == u"safe" ? nearestValue(result) : QJsonValue::Null},
        {u"readings"_s, readings(core)},
        {u"sources"_s, sources(result, records.readings.SensorDataReady)},
        {u"roof"_s, roof(core)},
        {u"codes"_s, QJsonArray::fromStringList(codes.split(u' ', Qt::SkipEmptyParts))},
        {u"status"_s, records.session.Statusbar1.Caption.value()},
        {u"alarm"_s, QJsonObject{{u"id"_s, records.readings.AlarmSoundId},
                                 {u"sounding"_s, records.alarms.ButtStopAlarm.Visible.value()},
                                 {u"suspended"_s, records.alarms.SuspendSoundAlarm.checked()}}},
        {u"recording"_s, core.recorder.recording},
        {u"history"_s, history(core.history.state())},
        {u"attached"_s, records.session.ClientCount}};
}

QString stateDocumentText(const MonitoringCore& core) {
    return QString::fromUtf8(QJsonDocument(stateDocument(core)).toJson(QJsonDocument::Compact));
}

} // namespace skyhold
