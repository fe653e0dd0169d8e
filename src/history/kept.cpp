// SPDX-License-Identifier: GPL-3.0-or-later
#include "history/kept.h"

#include "units/conversion.h"
#include "units/unit_text.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

struct Extra {
    const char* name;
    std::optional<Measure> measure;
};

constexpr std::array<Extra, kMeasuredCount - kQuantityCount> kExtras{{
    {"wind_direction", std::nullopt},
    {"dew_point", Measure::Temperature},
    {"pressure", std::nullopt},
    {"ambient_temperature", Measure::Temperature},
    {"sensor_temperature", Measure::Temperature},
    {"rain_heater", Measure::Percent},
}};

constexpr double kDegrees = std::numbers::pi / 180;

bool isQuantity(std::size_t index) {
    return index < kQuantityCount;
}

std::int32_t keptLevel(std::int32_t level) {
    constexpr std::int32_t kNoLevel = 9;
    return level >= 0 && level <= static_cast<std::int32_t>(kLevelCount) ? level : kNoLevel;
}

std::optional<double> finite(std::optional<double> value) {
    return value && std::isfinite(*value) ? value : std::nullopt;
}

double temperatureIn(char from, char to, double value, bool difference) {
    if (from == to || from == ' ' || to == ' ')
        return value;
    const double offset = difference ? 0 : 32;
    return to == 'F' ? value * 1.8 + offset : (value - offset) / 1.8;
}

} // namespace

const char* measuredName(std::size_t index) {
    return isQuantity(index) ? quantityTable()[index].key : kExtras[index - kQuantityCount].name;
}

std::optional<Measure> measureOf(std::size_t index) {
    return isQuantity(index) ? quantityTable()[index].measure
                             : kExtras[index - kQuantityCount].measure;
}

double converted(std::size_t index, double value, KeptUnits from, KeptUnits to) {
    const std::optional<Measure> measure = measureOf(index);
    if (from == to || !measure)
        return value;
    if (*measure == Measure::Speed)
        return ConvertSpeed(static_cast<SpeedCode>(from.speed), static_cast<SpeedCode>(to.speed),
                            value);
    if (*measure == Measure::Temperature || *measure == Measure::TemperatureDifference)
        return temperatureIn(from.temperature, to.temperature, value,
                             *measure == Measure::TemperatureDifference);
    return value;
}

QString measuredUnit(std::size_t index, KeptUnits units) {
    if (index == MeasuredDirection)
        return u"°"_s;
    if (index == MeasuredPressure)
        return u"hPa"_s;
    return unitText(*measureOf(index), static_cast<TemperatureCode>(units.temperature),
                    static_cast<SpeedCode>(units.speed));
}

KeptCycle keptCycle(const CycleResult& result, Verdict verdict) {
    const StationObservation& station = result.observation.station;
    const SensorObservation& sensor = result.observation.sensor;
    KeptCycle cycle{
        .atMs = result.judged.utcMs,
        .number = result.number,
        .intervalSeconds = result.intervalSeconds,
        .units = {static_cast<char>(result.temperatureUnit), static_cast<char>(result.speedUnit)},
        .values = {},
        .levels = {},
        .station = station.state,
        .valuesMissing = station.valuesMissing,
        .sensor = sensor.state,
        .verdict = verdict,
        .byClient = result.judgement.byClient};
    for (const Quantity quantity : kAllQuantities) {
        cycle.values[measured(quantity)] = finite(result.observation.values[quantity]);
        cycle.levels[quantity] = keptLevel(result.judgement.levels[quantity]);
    }
    cycle.values[MeasuredDirection] = finite(station.windDirection);
    cycle.values[MeasuredDewPoint] = finite(station.numbers[Quantity::Dew]);
    cycle.values[MeasuredPressure] = finite(station.pressure);
    cycle.values[MeasuredAmbient] = finite(sensor.ambientTemperature);
    cycle.values[MeasuredSensorTemperature] = finite(sensor.skySensorTemperature);
    cycle.values[MeasuredRainHeater] = finite(sensor.rainHeaterPercent);
    return cycle;
}

void putInto(Observation& observation, const KeptCycle& cycle) {
    observation.station.state = cycle.station;
    observation.station.valuesMissing = cycle.valuesMissing;
    observation.station.windDirection = cycle.values[MeasuredDirection];
    observation.sensor.state = cycle.sensor;
    for (const Quantity quantity : kAllQuantities) {
        observation.values[quantity] = cycle.values[measured(quantity)];
        if (rowOf(quantity).source == SourceName::Sensor)
            observation.givenLevels[quantity] = cycle.levels[quantity];
    }
}

HistoryPoint pointOf(const KeptCycle& cycle) {
    HistoryPoint point;
    point.atMs = cycle.atMs;
    point.cycles = 1;
    point.unsafeCycles = cycle.unsafe() ? 1 : 0;
    point.units = cycle.units;
    for (std::size_t i = 0; i < kMeasuredCount; ++i) {
        if (const std::optional<double>& value = cycle.values[i])
            point.values[i] = Extent{*value, *value, *value};
    }
    point.lowestLevel = cycle.levels;
    point.highestLevel = cycle.levels;
    // A dead instrument makes a station that can be read unusable in part.
    point.station = cycle.station == SourceState::Ok && cycle.valuesMissing ? SourceState::Unusable
                                                                            : cycle.station;
    point.stationFaultyCycles = cycle.stationFaulty() ? 1 : 0;
    point.sensor = cycle.sensor;
    point.sensorFailedCycles = cycle.sensor != SourceState::Ok ? 1 : 0;
    point.verdict = cycle.verdict;
    return point;
}

KeptCycle cycleOf(const HistoryPoint& point, Extreme extreme) {
    const bool worst = extreme == Extreme::High;
    const auto state = [&](SourceState state, int faulty) {
        return worst || faulty == point.cycles ? state : SourceState::Ok;
    };
    KeptCycle cycle{.atMs = point.atMs,
                    .number = 0,
                    .intervalSeconds = static_cast<int>(point.spanMs / 1'000),
                    .units = point.units,
                    .values = {},
                    .levels = extreme == Extreme::Low ? point.lowestLevel : point.highestLevel,
                    .station = state(point.station, point.stationFaultyCycles),
                    .valuesMissing = false,
                    .sensor = state(point.sensor, point.sensorFailedCycles),
                    .verdict = point.verdict,
                    .byClient = false};
    for (std::size_t i = 0; i < kMeasuredCount; ++i) {
        if (const std::optional<Extent>& extent = point.values[i])
            cycle.values[i] = extreme == Extreme::Low    ? extent->low
                              : extreme == Extreme::High ? extent->high
                                                         : extent->mean;
    }
    return cycle;
}

void PointSum::add(const HistoryPoint& point) {
    if (point.units != sum_.units) {
        sum_.values = {};
        weighted_ = {};
        sum_.units = point.units;
    }
    for (std::size_t i = 0; i < kMeasuredCount; ++i) {
        if (!point.values[i])
            continue;
        const Extent& value = *point.values[i];
        std::optional<Extent>& extent = sum_.values[i];
        extent =
            extent ? Extent{std::min(extent->low, value.low), 0, std::max(extent->high, value.high)}
                   : value;
        Weighted& weighted = weighted_[i];
        weighted.weight += point.cycles;
        if (i == MeasuredDirection) {
            weighted.sine += std::sin(value.mean * kDegrees) * point.cycles;
            weighted.cosine += std::cos(value.mean * kDegrees) * point.cycles;
        } else {
            weighted.sum += value.mean * point.cycles;
        }
    }
    for (const Quantity quantity : kAllQuantities) {
        std::int32_t& lowest = sum_.lowestLevel[quantity];
        const std::int32_t low = point.lowestLevel[quantity];
        if (low != 0)
            lowest = lowest == 0 ? low : std::min(lowest, low);
        std::int32_t& highest = sum_.highestLevel[quantity];
        highest = std::max(highest, point.highestLevel[quantity]);
    }
    sum_.cycles += point.cycles;
    sum_.unsafeCycles += point.unsafeCycles;
    sum_.station = std::max(sum_.station, point.station);
    sum_.stationFaultyCycles += point.stationFaultyCycles;
    sum_.sensor = std::max(sum_.sensor, point.sensor);
    sum_.sensorFailedCycles += point.sensorFailedCycles;
    sum_.verdict = std::max(sum_.verdict, point.verdict);
}

HistoryPoint PointSum::take(std::int64_t atMs, std::int64_t spanMs) {
    sum_.atMs = atMs;
    sum_.spanMs = spanMs;
    for (std::size_t i = 0; i < kMeasuredCount; ++i) {
        if (!sum_.values[i])
            continue;
        const Weighted& weighted = weighted_[i];
        if (i == MeasuredDirection) {
            const double degrees = std::atan2(weighted.sine, weighted.cosine) / kDegrees;
            const double direction = degrees < 0 ? degrees + 360 : degrees;
            sum_.values[i] = Extent{direction, direction, direction};
        } else {
            sum_.values[i]->mean = weighted.sum / weighted.weight;
        }
    }
    HistoryPoint taken = sum_;
    sum_ = {};
    weighted_ = {};
    return taken;
}

} // namespace skyhold
