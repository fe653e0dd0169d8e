// SPDX-License-Identifier: GPL-3.0-or-later
// What the monitor said at a moment of the past, in the form of its state document.
#include "history/json.h"

#include <QDateTime>
#include <QJsonArray>

#include <cmath>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

QJsonValue timeValue(std::int64_t utcMs) {
    return utcMs > 0 ? QJsonValue(isoTime(utcMs)) : QJsonValue(QJsonValue::Null);
}

QJsonValue numberValue(const std::optional<double>& value) {
    return value ? QJsonValue(std::round(*value * 1e6) / 1e6) : QJsonValue(QJsonValue::Null);
}

QString stateText(SourceState state, bool valuesMissing) {
    switch (state) {
    case SourceState::Ok:
        return valuesMissing ? u"unusable"_s : u"ok"_s;
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

QJsonObject source(const QString& state) {
    return {{u"state"_s, state}, {u"detail"_s, QString()}};
}

// What the limits of that time say of a reading: limits, armed levels, the words for its level.
QJsonObject reading(std::size_t index, const KeptCycle& cycle, const QJsonObject& limits) {
    const QString name = QLatin1String(measuredName(index));
    QJsonObject shown = limits[name].toObject();
    shown[u"value"_s] = numberValue(cycle.values[index]);
    shown[u"unit"_s] = measuredUnit(index, cycle.units);
    if (index >= kQuantityCount)
        return shown;
    const int level = cycle.levels.values[index];
    shown[u"level"_s] = level;
    const QJsonArray labels = shown[u"labels"_s].toArray();
    shown[u"label"_s] = level == 0 ? u"Unknown"_s : labels[level - 1].toString();
    shown.remove(u"labels"_s);
    return shown;
}

QJsonArray oneCause(const QString& text) {
    return {QJsonObject{{u"kind"_s, u"session"_s}, {u"name"_s, QString()}, {u"text"_s, text}}};
}

// Longer than this after a cycle nobody has looked, as in the monitor itself.
std::int64_t overdueMs(const KeptCycle& cycle) {
    return 1'000 * (3LL * cycle.intervalSeconds + 5);
}

} // namespace

QJsonObject HistoryReader::stateAt(std::int64_t atMs) {
    if (!fault_.isEmpty())
        return {};
    const std::optional<HistoryEvent> verdict = lastEvent(u"verdict"_s, atMs);
    const std::optional<HistoryEvent> limits = lastEvent(u"limits"_s, atMs);
    const std::optional<KeptCycle> cycle = cycleBefore(atMs);
    if (!verdict || !fault_.isEmpty())
        return {};
    const bool running = verdict->state != u"none";
    const bool read = cycle && running && atMs - cycle->atMs <= overdueMs(*cycle);
    QJsonObject state{{u"schema"_s, 1},
                      {u"time"_s, timeValue(read ? cycle->atMs : atMs)},
                      {u"session"_s, running ? u"running"_s : u"idle"_s},
                      {u"safe"_s, read && verdict->state == u"safe"},
                      {u"verdict"_s, read ? verdict->state : u"none"_s},
                      {u"since"_s, read ? timeValue(verdictSince(*verdict)) : QJsonValue::Null},
                      {u"decided_by"_s, verdict->detail.value(u"decided_by"_s)},
                      {u"controller"_s, verdict->detail.value(u"controller"_s)}};
    if (!running)
        state[u"causes"_s] = oneCause(verdict->text);
    else if (!read)
        state[u"causes"_s] = oneCause(u"Nothing was read at that time"_s);
    else
        state[u"causes"_s] = verdict->detail.value(u"causes"_s).toArray();
    if (!read)
        return state;
    state[u"cycle"_s] = static_cast<qint64>(cycle->number);
    state[u"interval_s"_s] = cycle->intervalSeconds;
    const QJsonObject inForce =
        limits ? limits->detail.value(u"readings"_s).toObject() : QJsonObject();
    QJsonObject readings;
    for (std::size_t i = 0; i < kMeasuredCount; ++i)
        readings[QLatin1String(measuredName(i))] = reading(i, *cycle, inForce);
    state[u"readings"_s] = readings;
    state[u"sources"_s] =
        QJsonObject{{u"sensor"_s, source(stateText(cycle->sensor, false))},
                    {u"station"_s, source(stateText(cycle->station, cycle->valuesMissing))}};
    return state;
}

} // namespace skyhold
