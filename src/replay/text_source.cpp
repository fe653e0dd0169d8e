// SPDX-License-Identifier: GPL-3.0-or-later
// Recorded cycles from text files.
#include "datafiles/data_items.h"
#include "replay/source.h"
#include "settings/key_table.h"
#include "settings/stored_text.h"

#include <QDateTime>

#include <algorithm>
#include <memory>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

// Fields with commas between them, with or without double quotes, which are doubled within.
QStringList fieldsOf(QStringView line) {
    QStringList fields;
    QString field;
    bool quoted = false;
    for (qsizetype i = 0; i < line.size(); ++i) {
        const QChar character = line[i];
        if (character == u'"' && quoted && i + 1 < line.size() && line[i + 1] == u'"') {
            field += character;
            ++i;
        } else if (character == u'"') {
            quoted = !quoted;
        } else if (character == u',' && !quoted) {
            fields += field.trimmed();
            field.clear();
        } else {
            field += character;
        }
    }
    return fields << field.trimmed();
}

// Where a column goes, and the unit that it is in.
struct Column {
    enum class What : std::uint8_t { None, Time, Date, TimeOfDay, Value, Level };
    What what = What::None;
    std::size_t measured = 0; // of a value
    Quantity quantity{};      // of a level
    KeptUnits units;
};

struct LogColumn {
    const char* name;
    std::size_t measured;
    KeptUnits units;
};

constexpr LogColumn kLogColumns[] = {
    {"temperature_f", measured(Quantity::Temperature), {'F', 'K'}},
    {"temperature_c", measured(Quantity::Temperature), {'C', 'K'}},
    {"dew_point_f", MeasuredDewPoint, {'F', 'K'}},
    {"dew_point_c", MeasuredDewPoint, {'C', 'K'}},
    {"humidity_pct", measured(Quantity::Humidity), {}},
    {"wind_direction_deg", MeasuredDirection, {}},
    {"wind_mph", measured(Quantity::Wind), {'C', 'M'}},
    {"wind_kmh", measured(Quantity::Wind), {'C', 'K'}},
    {"wind_ms", measured(Quantity::Wind), {'C', 'm'}},
    {"wind_kn", measured(Quantity::Wind), {'C', 'k'}},
    {"gust_mph", measured(Quantity::Gust), {'C', 'M'}},
    {"gust_kmh", measured(Quantity::Gust), {'C', 'K'}},
    {"gust_ms", measured(Quantity::Gust), {'C', 'm'}},
    {"gust_kn", measured(Quantity::Gust), {'C', 'k'}},
    {"pressure_hpa", MeasuredPressure, {}},
};

Column logColumn(const QString& name) {
    if (name == u"time_utc")
        return {.what = Column::What::Time, .units = {}};
    for (const LogColumn& column : kLogColumns) {
        if (name == QLatin1String(column.name))
            return {
                .what = Column::What::Value, .measured = column.measured, .units = column.units};
    }
    return {};
}

// The data items of the user data file that the rules ask for.
Column itemColumn(int item, KeptUnits units) {
    for (const QuantityRow& row : quantityTable()) {
        if (row.dataItem == item && !row.hasLimits())
            return {.what = Column::What::Level, .quantity = row.quantity, .units = units};
    }
    const auto value = [units](std::size_t measured) {
        return Column{.what = Column::What::Value, .measured = measured, .units = units};
    };
    switch (item) {
    case 1:
        return {.what = Column::What::Date, .units = units};
    case 2:
        return {.what = Column::What::TimeOfDay, .units = units};
    case 11:
        return value(measured(Quantity::Cloud));
    case 12:
        return value(measured(Quantity::Rain));
    case 13:
        return value(measured(Quantity::Wind));
    case 14:
        return value(measured(Quantity::Gust));
    case 15:
        return value(MeasuredDirection);
    case 16:
        return value(measured(Quantity::Temperature));
    case 17:
        return value(MeasuredDewPoint);
    case 18:
        return value(measured(Quantity::Humidity));
    case 19:
        return value(measured(Quantity::Brightness));
    default:
        return {};
    }
}

Column headingColumn(const QString& heading, const Records& records, KeptUnits units) {
    for (const DataColumn& column : records.dataFile.Columns) {
        if (column.Hdr.trimmed() == heading)
            return itemColumn(column.Cal, units);
    }
    for (int slot = 1; slot <= 25; ++slot) {
        if (defaultDataColumn(slot).Hdr == heading)
            return itemColumn(slot, units);
    }
    return {};
}

// The level that the words stand for; 0 for "Unknown" and for words that nobody knows any more.
std::int32_t levelOf(Quantity quantity, const QString& words, const Records& records) {
    for (std::size_t i = 0; i < kLevelCount; ++i) {
        if (words == records.conditions.Cond[quantity][i].Caption.value().trimmed() ||
            words == QLatin1String(rowOf(quantity).levels[i].description))
            return static_cast<std::int32_t>(i) + 1;
    }
    return 0;
}

struct Reader {
    const Records& records;
    KeptUnits units;
    std::vector<Column> columns;
    bool log = false;
    NumberForms forms;

    std::optional<KeptCycle> cycleOf(const QStringList& fields) const;
};

std::optional<KeptCycle> Reader::cycleOf(const QStringList& fields) const {
    KeptCycle cycle;
    cycle.units = units;
    cycle.station = cycle.sensor = SourceState::Ok;
    QDateTime time;
    QDate date;
    QTime timeOfDay;
    bool missing = false;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const Column& column = columns[i];
        const QString field = fields.value(static_cast<qsizetype>(i));
        switch (column.what) {
        case Column::What::None:
            break;
        case Column::What::Time:
            time = QDateTime::fromString(field, Qt::ISODate);
            if (time.timeSpec() == Qt::LocalTime) // it names no zone
                time.setTimeSpec(Qt::UTC);
            break;
        case Column::What::Date:
            date = QDate::fromString(field, Qt::ISODate);
            break;
        case Column::What::TimeOfDay:
            timeOfDay = QTime::fromString(field, Qt::ISODate);
            break;
        case Column::What::Level:
            cycle.levels[column.quantity] = levelOf(column.quantity, field, records);
            break;
        case Column::What::Value:
            if (const std::optional<double> value = storedNumber(field, forms))
                cycle.values[column.measured] =
                    converted(column.measured, *value, column.units, units);
            else if (column.measured != MeasuredDirection && column.measured != MeasuredPressure)
                missing = missing || !log || column.measured != measured(Quantity::Gust);
            break;
        }
    }
    if (date.isValid() && timeOfDay.isValid())
        time = QDateTime(date, timeOfDay);
    if (!time.isValid())
        return std::nullopt;
    cycle.atMs = time.toMSecsSinceEpoch();
    cycle.valuesMissing = missing;
    std::optional<double>& gust = cycle.values[measured(Quantity::Gust)];
    if (log && !gust)
        gust = cycle.values[measured(Quantity::Wind)];
    const std::optional<double>& warm = cycle.values[measured(Quantity::Temperature)];
    const std::optional<double>& dewPoint = cycle.values[MeasuredDewPoint];
    if (warm && dewPoint)
        cycle.values[measured(Quantity::Dew)] = *warm - *dewPoint;
    return cycle;
}

// How far apart they are most of the time.
int usualInterval(const std::vector<KeptCycle>& cycles) {
    std::vector<std::int64_t> steps;
    for (std::size_t i = 1; i < cycles.size(); ++i)
        steps.push_back(cycles[i].atMs - cycles[i - 1].atMs);
    if (steps.empty())
        return 10;
    const auto middle = steps.begin() + std::ssize(steps) / 2;
    std::nth_element(steps.begin(), middle, steps.end());
    return static_cast<int>(std::clamp<std::int64_t>(*middle / 1'000, 1, 86'400));
}

} // namespace

ReplaySource fromText(const QByteArray& text, const Records& records, std::int64_t sinceMs,
                      std::int64_t untilMs, KeptUnits units) {
    ReplaySource source;
    const QStringList lines = QString::fromUtf8(text).split(u'\n');
    Reader reader{records, units, {}, false, localeNumberForms()};
    const QStringList header = fieldsOf(lines.first());
    reader.log = header.contains(u"time_utc"_s);
    for (const QString& heading : header)
        reader.columns.push_back(reader.log ? logColumn(heading)
                                            : headingColumn(heading, records, units));
    auto cycles = std::make_shared<std::vector<KeptCycle>>();
    for (const QString& line : lines.mid(1)) {
        const std::optional<KeptCycle> cycle = reader.cycleOf(fieldsOf(line));
        if (cycle && cycle->atMs >= sinceMs && cycle->atMs < untilMs)
            cycles->push_back(*cycle);
    }
    if (cycles->empty()) {
        source.fault = u"no line of it has a time and values"_s;
        return source;
    }
    std::ranges::stable_sort(*cycles, {}, &KeptCycle::atMs);
    source.firstMs = cycles->front().atMs;
    source.lastMs = cycles->back().atMs;
    const int interval = usualInterval(*cycles);
    source.each = [cycles, interval](const TakeStep& take) {
        ReplayStep step;
        step.intervalSeconds = interval;
        for (const KeptCycle& cycle : *cycles) {
            putInto(step.observation, cycle);
            step.utcMs = cycle.atMs;
            step.newSession = &cycle == &cycles->front();
            if (!take(step))
                break;
        }
        return QString();
    };
    return source;
}

} // namespace skyhold
