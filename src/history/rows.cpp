// SPDX-License-Identifier: GPL-3.0-or-later
#include "history/rows.h"

#include <QJsonDocument>
#include <QVariant>

#include <algorithm>
#include <cmath>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

// Thinned values are whole hundredths: two or three bytes in place of eight.
constexpr double kParts = 100;
constexpr const char* kTemperatures = " CF";
constexpr const char* kSpeeds = "KMmk";
// Beside the station's state: it is there, and does not say all that it should.
constexpr int kValuesMissing = 10;

QString list(const QStringList& columns) {
    return columns.join(u", "_s);
}

QString insert(const QString& table, const QStringList& columns) {
    QStringList places(columns.size(), u"?"_s);
    return u"INSERT OR REPLACE INTO %1 (%2) VALUES (%3)"_s.arg(table, list(columns), list(places));
}

const QStringList& cycleNames() {
    static const QStringList names = [] {
        QStringList all{u"at"_s,      u"cycle"_s,  u"interval_s"_s, u"verdict"_s, u"by_client"_s,
                        u"station"_s, u"sensor"_s, u"units"_s,      u"levels"_s};
        for (std::size_t i = 0; i < kMeasuredCount; ++i)
            all += QLatin1String(measuredName(i));
        return all;
    }();
    return names;
}

const QStringList& pointNames() {
    static const QStringList names = [] {
        QStringList all{u"at"_s,      u"cycles"_s,     u"unsafe_cycles"_s,  u"verdict"_s,
                        u"station"_s, u"sensor"_s,     u"station_faulty"_s, u"sensor_failed"_s,
                        u"units"_s,   u"levels_low"_s, u"levels_high"_s};
        for (std::size_t i = 0; i < kMeasuredCount; ++i) {
            const QString name = QLatin1String(measuredName(i));
            all += name;
            if (i < kQuantityCount)
                all += {name + u"_min"_s, name + u"_max"_s};
        }
        return all;
    }();
    return names;
}

const QStringList& eventNames() {
    static const QStringList names{u"at"_s,    u"kind"_s, u"name"_s,
                                   u"state"_s, u"text"_s, u"detail"_s};
    return names;
}

// The place of a code in its row of codes, 0 for one that is not in it.
int placeOf(const char* codes, char code) {
    const char* const found = code == '\0' ? nullptr : std::strchr(codes, code);
    return found ? static_cast<int>(found - codes) : 0;
}

// "11": the place of the temperature's code and that of the speed's.
int unitsNumber(KeptUnits units) {
    return 10 * placeOf(kTemperatures, units.temperature) + placeOf(kSpeeds, units.speed);
}
KeptUnits unitsOf(int number) {
    return {kTemperatures[std::clamp(number / 10, 0, 2)], kSpeeds[std::clamp(number % 10, 0, 3)]};
}

// A decimal digit for each quantity, in their order.
int levelsNumber(const PerQuantity<std::int32_t>& levels) {
    int number = 0;
    for (const std::int32_t level : levels)
        number = number * 10 + level;
    return number;
}
PerQuantity<std::int32_t> levelsOf(int number) {
    PerQuantity<std::int32_t> levels;
    for (std::size_t i = kQuantityCount; i-- > 0; number /= 10)
        levels.values[i] = number % 10;
    return levels;
}

template <class Enumeration>
Enumeration named(int number, Enumeration last) {
    return static_cast<Enumeration>(std::clamp(number, 0, static_cast<int>(last)));
}

QVariant parts(double value) {
    return static_cast<qlonglong>(std::llround(std::clamp(value, -1e15, 1e15) * kParts));
}

} // namespace

QStringList createStatements() {
    QStringList statements;
    const auto table = [&statements](const QString& name, const QStringList& columns,
                                     const QString& type) {
        QStringList typed{u"at INTEGER PRIMARY KEY"_s};
        for (qsizetype i = 1; i < columns.size(); ++i)
            typed += columns[i] + u' ' + (i < 9 ? u"INTEGER"_s : type);
        statements += u"CREATE TABLE %1 (%2)"_s.arg(name, list(typed));
    };
    table(u"cycles"_s, cycleNames(), u"REAL"_s);
    for (const Tier& tier : kTiers)
        table(QLatin1String(tier.table), pointNames(), u"INTEGER"_s);
    statements += u"CREATE TABLE events (id INTEGER PRIMARY KEY, at INTEGER, kind TEXT, "
                  "name TEXT, state TEXT, text TEXT, detail TEXT)"_s;
    statements += u"CREATE INDEX events_at ON events (at)"_s;
    statements += u"CREATE INDEX events_kind ON events (kind, at)"_s;
    return statements;
}

QString cycleColumns() {
    return list(cycleNames());
}

QString cycleInsert() {
    return insert(u"cycles"_s, cycleNames());
}

void bindCycle(QSqlQuery& query, const KeptCycle& cycle) {
    query.bindValue(0, static_cast<qlonglong>(cycle.atMs));
    query.bindValue(1, static_cast<qlonglong>(cycle.number));
    query.bindValue(2, cycle.intervalSeconds);
    query.bindValue(3, static_cast<int>(cycle.verdict));
    query.bindValue(4, cycle.byClient ? 1 : 0);
    query.bindValue(5,
                    static_cast<int>(cycle.station) + (cycle.valuesMissing ? kValuesMissing : 0));
    query.bindValue(6, static_cast<int>(cycle.sensor));
    query.bindValue(7, unitsNumber(cycle.units));
    query.bindValue(8, levelsNumber(cycle.levels));
    for (std::size_t i = 0; i < kMeasuredCount; ++i)
        query.bindValue(9 + static_cast<int>(i),
                        cycle.values[i] ? QVariant(*cycle.values[i]) : QVariant());
}

KeptCycle readCycle(const QSqlQuery& query) {
    KeptCycle cycle;
    cycle.atMs = query.value(0).toLongLong();
    cycle.number = query.value(1).toLongLong();
    cycle.intervalSeconds = query.value(2).toInt();
    cycle.verdict = named(query.value(3).toInt(), Verdict::Unsafe);
    cycle.byClient = query.value(4).toInt() != 0;
    const int station = query.value(5).toInt();
    cycle.station = named(station % kValuesMissing, SourceState::Absent);
    cycle.valuesMissing = station >= kValuesMissing;
    cycle.sensor = named(query.value(6).toInt(), SourceState::Absent);
    cycle.units = unitsOf(query.value(7).toInt());
    cycle.levels = levelsOf(query.value(8).toInt());
    for (std::size_t i = 0; i < kMeasuredCount; ++i) {
        const QVariant value = query.value(9 + static_cast<int>(i));
        if (!value.isNull())
            cycle.values[i] = value.toDouble();
    }
    return cycle;
}

QString pointColumns() {
    return list(pointNames());
}

QString pointInsert(const Tier& tier) {
    return insert(QLatin1String(tier.table), pointNames());
}

void bindPoint(QSqlQuery& query, const HistoryPoint& point) {
    int place = 0;
    const auto bind = [&](const QVariant& value) {
        query.bindValue(place++, value);
    };
    bind(static_cast<qlonglong>(point.atMs));
    bind(point.cycles);
    bind(point.unsafeCycles);
    bind(static_cast<int>(point.verdict));
    bind(static_cast<int>(point.station));
    bind(static_cast<int>(point.sensor));
    bind(point.stationFaultyCycles);
    bind(point.sensorFailedCycles);
    bind(unitsNumber(point.units));
    bind(levelsNumber(point.lowestLevel));
    bind(levelsNumber(point.highestLevel));
    for (std::size_t i = 0; i < kMeasuredCount; ++i) {
        const std::optional<Extent>& extent = point.values[i];
        const QVariant mean = extent ? parts(extent->mean) : QVariant();
        bind(mean);
        if (i >= kQuantityCount)
            continue;
        // Nothing where it is the mean, as it is most of the time: stations are slow.
        for (const double end : {extent ? extent->low : 0, extent ? extent->high : 0}) {
            const QVariant value = extent ? parts(end) : QVariant();
            bind(value == mean ? QVariant() : value);
        }
    }
}

HistoryPoint readPoint(const QSqlQuery& query, std::int64_t spanMs) {
    HistoryPoint point;
    int place = 0;
    const auto next = [&] {
        return query.value(place++);
    };
    point.atMs = next().toLongLong();
    point.spanMs = spanMs;
    point.cycles = next().toInt();
    point.unsafeCycles = next().toInt();
    point.verdict = named(next().toInt(), Verdict::Unsafe);
    point.station = named(next().toInt(), SourceState::Absent);
    point.sensor = named(next().toInt(), SourceState::Absent);
    point.stationFaultyCycles = next().toInt();
    point.sensorFailedCycles = next().toInt();
    point.units = unitsOf(next().toInt());
    point.lowestLevel = levelsOf(next().toInt());
    point.highestLevel = levelsOf(next().toInt());
    for (std::size_t i = 0; i < kMeasuredCount; ++i) {
        const QVariant mean = next();
        const QVariant low = i < kQuantityCount ? next() : QVariant();
        const QVariant high = i < kQuantityCount ? next() : QVariant();
        if (mean.isNull())
            continue;
        const double value = mean.toDouble() / kParts;
        point.values[i] = Extent{low.isNull() ? value : low.toDouble() / kParts, value,
                                 high.isNull() ? value : high.toDouble() / kParts};
    }
    return point;
}

QString eventColumns() {
    return list(eventNames());
}

QString eventInsert() {
    return u"INSERT INTO events (%1) VALUES (?, ?, ?, ?, ?, ?)"_s.arg(eventColumns());
}

void bindEvent(QSqlQuery& query, const HistoryEvent& event) {
    query.bindValue(0, static_cast<qlonglong>(event.atMs));
    query.bindValue(1, event.kind);
    query.bindValue(2, event.name);
    query.bindValue(3, event.state);
    query.bindValue(4, event.text);
    query.bindValue(5, event.detail.isEmpty()
                           ? QVariant()
                           : QVariant(QString::fromUtf8(
                                 QJsonDocument(event.detail).toJson(QJsonDocument::Compact))));
}

HistoryEvent readEvent(const QSqlQuery& query) {
    return {.atMs = query.value(0).toLongLong(),
            .kind = query.value(1).toString(),
            .name = query.value(2).toString(),
            .state = query.value(3).toString(),
            .text = query.value(4).toString(),
            .detail = QJsonDocument::fromJson(query.value(5).toString().toUtf8()).object()};
}

} // namespace skyhold
