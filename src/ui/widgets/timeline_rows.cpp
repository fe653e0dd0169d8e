// SPDX-License-Identifier: GPL-3.0-or-later
// The rows below the band: curves with their gaps, scales, limits and the area beyond them.
#include "conditions/rule_values.h"
#include "platform/text_forms.h"
#include "ui/widgets/timeline_data.h"
#include "units/unit_text.h"

#include <algorithm>
#include <cmath>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr std::array<std::size_t, kTimelineRowCount> kOrder{measured(Quantity::Cloud),
                                                            measured(Quantity::Rain),
                                                            measured(Quantity::Brightness),
                                                            measured(Quantity::Temperature),
                                                            measured(Quantity::Wind),
                                                            measured(Quantity::Gust),
                                                            MeasuredDirection,
                                                            measured(Quantity::Dew),
                                                            measured(Quantity::Humidity)};

// What a steady evening does not fill its row with.
double leastSpan(std::size_t index) {
    if (index == measured(Quantity::Cloud) || index == measured(Quantity::Temperature))
        return 8;
    if (index == measured(Quantity::Dew))
        return 4;
    return index == measured(Quantity::Rain) ? 100 : 10;
}

// The rules in force, and from when on.
struct Epoch {
    TimeRange time;
    Rules rules;
};

std::vector<Epoch> epochsOf(const NightRecord& record) {
    std::vector<Epoch> epochs;
    for (const HistoryEvent& event : record.events) {
        if (event.kind != u"limits")
            continue;
        Rules rules;
        takeRules(rules, event.detail[u"rules"_s].toObject());
        const std::int64_t from = std::max(event.atMs, record.range.fromMs);
        if (!epochs.empty())
            epochs.back().time.toMs = from;
        epochs.push_back({{from, record.range.toMs}, rules});
    }
    std::erase_if(epochs, [](const Epoch& epoch) { return epoch.time.lengthMs() <= 0; });
    return epochs;
}

const Epoch* epochAt(const std::vector<Epoch>& epochs, std::int64_t atMs) {
    const auto found =
        std::ranges::find_if(epochs, [atMs](const Epoch& epoch) { return epoch.time.holds(atMs); });
    return found == epochs.end() ? nullptr : &*found;
}

// The units in which the limits of a time were set.
KeptUnits unitsAt(const NightRecord& record, std::int64_t atMs) {
    const auto point = std::ranges::find_if(
        record.points, [atMs](const HistoryPoint& p) { return p.atMs >= atMs; });
    if (point != record.points.end())
        return point->units;
    return record.points.empty() ? KeptUnits{} : record.points.back().units;
}

// Bands of levels that count as unsafe, neighbours as one: (low, high].
std::vector<std::pair<double, double>> unsafeBands(const LevelRules& levels, bool beyondIsUnsafe) {
    std::vector<std::pair<double, double>> bands;
    if (!levels.ordered())
        return bands;
    const auto add = [&bands](double low, double high) {
        if (!bands.empty() && bands.back().second == low)
            bands.back().second = high;
        else
            bands.emplace_back(low, high);
    };
    for (std::size_t i = 0; i < kLevelCount; ++i) {
        if (levels.unsafe[i])
            add(i == 0 ? -kNoBound : levels.limits[i - 1], levels.limits[i]);
    }
    if (beyondIsUnsafe)
        add(levels.limits.back(), kNoBound);
    return bands;
}

void addLimits(TimelineRow& row, Quantity quantity, const Epoch& epoch, KeptUnits from,
               KeptUnits to) {
    const LevelRules& levels = epoch.rules.levels[quantity];
    const auto shown = [&](double value) {
        return converted(row.index, value, from, to);
    };
    std::vector<double> ends;
    for (const auto& [low, high] : unsafeBands(levels, epoch.rules.beyondIsUnsafe)) {
        row.zones.push_back({epoch.time, shown(low), shown(high)});
        for (const double end : {low, high}) {
            if (std::isfinite(end))
                ends.push_back(end);
        }
    }
    for (const double limit : levels.limits)
        row.lines.push_back({epoch.time, shown(limit), std::ranges::count(ends, limit) > 0, false});
}

bool armed(const LevelRules& levels, std::int32_t level) {
    return level >= 1 && level <= static_cast<std::int32_t>(kLevelCount) &&
           levels.unsafe[static_cast<std::size_t>(level - 1)];
}

bool anyArmed(const LevelRules& levels, std::int32_t lowest, std::int32_t highest) {
    for (std::int32_t level = std::max(lowest, 1); level <= highest; ++level) {
        if (armed(levels, level))
            return true;
    }
    return false;
}

// The sensor program decides its levels by limits of its own. What is known of them is which values
// it has called unsafe: where these lie apart from all others, a zone begins at the mildest.
void observeLimit(TimelineRow& row, const TimeRange& time,
                  const std::vector<std::pair<Sample, bool>>& judged) {
    double lowUnsafe = kNoBound, highUnsafe = -kNoBound, lowSafe = kNoBound, highSafe = -kNoBound;
    for (const auto& [sample, isUnsafe] : judged) {
        double& low = isUnsafe ? lowUnsafe : lowSafe;
        double& high = isUnsafe ? highUnsafe : highSafe;
        low = std::min(low, sample.low);
        high = std::max(high, sample.high);
    }
    if (lowUnsafe > highUnsafe || lowSafe > highSafe)
        return;
    if (lowUnsafe > highSafe) {
        row.zones.push_back({time, lowUnsafe, kNoBound});
        row.lines.push_back({time, lowUnsafe, true, true});
    } else if (highUnsafe < lowSafe) {
        row.zones.push_back({time, -kNoBound, highUnsafe});
        row.lines.push_back({time, highUnsafe, true, true});
    }
}

bool inZone(const std::vector<Zone>& zones, const Sample& sample) {
    return std::ranges::any_of(zones, [&sample](const Zone& zone) {
        return zone.time.holds(sample.time.fromMs) && sample.high > zone.low &&
               sample.low <= zone.high;
    });
}

// A source that was not to be trusted in the whole time has no values of its own.
bool sourceFailed(const HistoryPoint& point, std::size_t index) {
    const bool ofSensor = index < kQuantityCount && !quantityTable()[index].hasLimits();
    return ofSensor ? point.sensor != SourceState::Ok && point.sensorFailedCycles == point.cycles
                    : point.station != SourceState::Ok && point.stationFaultyCycles == point.cycles;
}

// Longer than this without a reading is a gap.
std::int64_t longestStep(const NightRecord& record) {
    std::vector<std::int64_t> steps;
    for (std::size_t i = 1; i < record.points.size(); ++i)
        steps.push_back(record.points[i].atMs - record.points[i - 1].atMs);
    std::int64_t usual = record.stepMs;
    if (!steps.empty()) {
        const auto middle = steps.begin() + static_cast<std::ptrdiff_t>(steps.size() / 2);
        std::ranges::nth_element(steps, middle);
        usual = std::max(usual, *middle);
    }
    return 3 * usual + 5'000;
}

void addRuns(TimelineRow& row, const NightRecord& record, const std::vector<Epoch>& epochs,
             KeptUnits units) {
    const bool ofSensor = row.index < kQuantityCount && !quantityTable()[row.index].hasLimits();
    const std::int64_t longest = longestStep(record);
    std::vector<std::pair<Sample, bool>> judged;
    bool going = false;
    for (const HistoryPoint& point : record.points) {
        const std::optional<Extent>& extent = point.values[row.index];
        if (!extent || sourceFailed(point, row.index)) {
            going = false;
            continue;
        }
        const auto shown = [&](double value) {
            return converted(row.index, value, point.units, units);
        };
        Sample sample{{point.atMs, point.atMs + std::max(point.spanMs, std::int64_t{1})},
                      shown(extent->low),
                      shown(extent->mean),
                      shown(extent->high),
                      false};
        if (const Epoch* epoch = epochAt(epochs, point.atMs); ofSensor && epoch) {
            const LevelRules& levels = epoch->rules.levels[static_cast<Quantity>(row.index)];
            const std::int32_t lowest = point.lowestLevel.values[row.index];
            const std::int32_t highest = point.highestLevel.values[row.index];
            sample.beyond = anyArmed(levels, lowest, highest);
            if (lowest == highest && lowest > 0)
                judged.emplace_back(sample, sample.beyond);
        } else {
            sample.beyond = inZone(row.zones, sample);
        }
        if (going && sample.time.fromMs - row.runs.back().back().time.toMs > longest)
            going = false;
        if (!going)
            row.runs.emplace_back();
        else
            row.runs.back().back().time.toMs = sample.time.fromMs; // it stands until the next
        row.runs.back().push_back(sample);
        going = true;
    }
    if (ofSensor)
        observeLimit(row, record.range, judged);
    // The last value of a run stands for as long as the next may take.
    for (std::vector<Sample>& run : row.runs)
        run.back().time.toMs = std::min(run.back().time.toMs + longest, record.range.toMs + 1);
}

void chooseScale(TimelineRow& row) {
    if (row.index == MeasuredDirection) {
        row.low = 0;
        row.high = 360;
        return;
    }
    double low = kNoBound;
    double high = -kNoBound;
    const auto take = [&](double value) {
        low = std::min(low, value);
        high = std::max(high, value);
    };
    for (const auto& run : row.runs) {
        for (const Sample& sample : run) {
            take(sample.low);
            take(sample.high);
        }
    }
    for (const LimitLine& line : row.lines) {
        if (line.unsafe)
            take(line.value);
    }
    if (low > high)
        return;
    if (row.logarithmic) {
        row.low = std::max(low, 1.0) / 1.5;
        row.high = std::max(high, 10.0) * 1.5;
        return;
    }
    const double span = std::max(high - low, leastSpan(row.index));
    const double middle = (low + high) / 2;
    row.low = middle - 0.6 * span;
    row.high = middle + 0.6 * span;
}

QString titleOf(std::size_t index) {
    if (index == MeasuredDirection)
        return u"Direction"_s;
    if (index == measured(Quantity::Dew))
        return u"Dew spread"_s;
    return QString::fromUtf16(quantityTable()[index].title);
}

} // namespace

double TimelineRow::shareOf(double value) const {
    if (logarithmic)
        return std::log(std::max(value, 0.1) / low) / std::log(high / low);
    return (value - low) / (high - low);
}

QString TimelineRow::text(double value) const {
    return formatNumber(value, decimals == 0 ? u"0" : u"0.0", {});
}

std::vector<TimelineRow> rowsOf(const NightRecord& record) {
    const std::vector<Epoch> epochs = epochsOf(record);
    const KeptUnits units = record.points.empty() ? KeptUnits{} : record.points.back().units;
    std::vector<TimelineRow> rows;
    for (const std::size_t index : kOrder) {
        TimelineRow row;
        row.index = index;
        row.title = titleOf(index);
        row.unit = measureOf(index) == Measure::Speed
                       ? shownSpeedUnit(static_cast<SpeedCode>(units.speed))
                       : measuredUnit(index, units);
        row.logarithmic = index == measured(Quantity::Brightness);
        const bool raw = row.unit.isEmpty();
        row.decimals = raw || index == measured(Quantity::Humidity) ? 0 : 1;
        if (raw)
            row.unit = u"raw"_s;
        if (index < kQuantityCount && quantityTable()[index].hasLimits()) {
            for (const Epoch& epoch : epochs)
                addLimits(row, static_cast<Quantity>(index), epoch,
                          unitsAt(record, epoch.time.fromMs), units);
        }
        addRuns(row, record, epochs, units);
        chooseScale(row);
        rows.push_back(std::move(row));
    }
    return rows;
}

} // namespace skyhold
