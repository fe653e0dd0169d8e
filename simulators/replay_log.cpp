// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulators/replay_log.h"

#include <QList>
#include <QStringList>

#include <algorithm>
#include <array>
#include <cmath>

namespace skyhold {

namespace {

struct Column {
    const char* name;
    QString LogRecord::*field;
};

constexpr std::array kColumns{
    Column{"temperature_f", &LogRecord::temperatureF},
    Column{"dew_point_f", &LogRecord::dewPointF},
    Column{"humidity_pct", &LogRecord::humidity},
    Column{"wind_direction_deg", &LogRecord::direction},
    Column{"wind_mph", &LogRecord::windMph},
    Column{"gust_mph", &LogRecord::gustMph},
    Column{"precipitation_in", &LogRecord::precipitationIn},
    Column{"pressure_hpa", &LogRecord::pressure},
};

auto firstAfter(const std::vector<LogRecord>& records, const QDateTime& time) {
    return std::upper_bound(
        records.begin(), records.end(), time,
        [](const QDateTime& wanted, const LogRecord& record) { return wanted < record.time; });
}

QStringList cellsOf(const QByteArray& line) {
    QStringList cells = QString::fromUtf8(line).split(u',');
    for (QString& cell : cells)
        cell = cell.trimmed();
    return cells;
}

} // namespace

const LogRecord* ReplayLog::inForce(const QDateTime& time) const {
    const auto after = firstAfter(records, time);
    return after == records.begin() ? nullptr : &*std::prev(after);
}

double ReplayLog::rainOfDay(const QDateTime& time) const {
    const QDateTime midnight = time.date().startOfDay();
    double inches = 0;
    const auto end = firstAfter(records, time);
    for (auto record = records.begin(); record != end; ++record) {
        const double fell = record->precipitationIn.toDouble(); // 0 for what is not a number
        if (record->time >= midnight && std::isfinite(fell))
            inches += fell;
    }
    return inches;
}

ReplayLog parseReplayLog(const QByteArray& text) {
    ReplayLog log;
    const QList<QByteArray> lines = text.split('\n');
    const QStringList header = cellsOf(lines.constFirst());
    const qsizetype timeColumn = header.indexOf(QStringLiteral("time_utc"));
    if (timeColumn < 0) {
        log.error = QStringLiteral("the header has no column \"time_utc\"");
        return log;
    }
    for (const QByteArray& line : lines.sliced(1)) {
        const QStringList cells = cellsOf(line);
        LogRecord record;
        record.time = QDateTime::fromString(cells.value(timeColumn), Qt::ISODate);
        if (!record.time.isValid())
            continue;
        // A time that names no zone is UTC as well.
        if (record.time.timeSpec() == Qt::LocalTime)
            record.time.setTimeSpec(Qt::UTC);
        for (const Column& column : kColumns)
            record.*column.field = cells.value(header.indexOf(QLatin1String(column.name)));
        log.records.push_back(std::move(record));
    }
    std::stable_sort(log.records.begin(), log.records.end(),
                     [](const LogRecord& a, const LogRecord& b) { return a.time < b.time; });
    if (log.records.empty())
        log.error = QStringLiteral("it has no records");
    return log;
}

} // namespace skyhold
