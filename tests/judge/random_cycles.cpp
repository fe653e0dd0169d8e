// SPDX-License-Identifier: GPL-3.0-or-later
#include "random_cycles.h"

#include "plain_model.h"

#include <limits>
#include <sstream>

namespace skyhold {

using enum Quantity;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinite = std::numeric_limits<double>::infinity();

std::optional<Sector> RandomCycles::randomSector() {
    const auto degrees = [this] {
        return static_cast<int>(below(360));
    };
    const int minutes = pick({0, 0, 1, 1, 5, 99});
    switch (below(6)) {
    case 0:
        return std::nullopt;
    case 1:
        return Sector{0, 359, minutes};
    case 2:
        return Sector{-1 - degrees() % 359, degrees(), minutes};
    case 3:
        return Sector{-pick({1, 30, 90, 359}), pick({0, 30, 90}), minutes};
    default: // one in two of them holds nothing
        return Sector{degrees(), degrees(), minutes};
    }
}

void RandomCycles::changeRules() {
    const auto armed = pick<std::uint64_t>({5, 20, 60}); // one level of so many
    for (const Quantity quantity : kAllQuantities) {
        LevelRules& row = rules.levels[quantity];
        double limit = static_cast<double>(below(40)) / 2 - 5;
        for (double& each : row.limits)
            each = limit += static_cast<double>(1 + below(20)) / 2;
        if (oneIn(6)) // out of order, or equal
            row.limits[below(3)] = row.limits[below(3)];
        if (oneIn(8))
            std::swap(row.limits[below(3)], row.limits[below(3)]);
        for (std::size_t i = 0; i < kLevelCount; ++i) {
            row.unsafe[i] = oneIn(armed);
            row.sectors[i].reset();
            if (quantity == Wind || quantity == Gust)
                row.sectors[i] = randomSector();
        }
    }
    rules.stationOldIsUnsafe = !oneIn(4);
    rules.sensorFailedIsUnsafe = !oneIn(4);
    rules.beyondIsUnsafe = oneIn(2);
    rules.safeDelaySeconds =
        pick({0.0, 0.0, -5.0, 1.0, 2.5, 10.0, 60.0, 60.0, 300.0, 1e6, 2'147'483'647.0});
    rules.calm.closures = pick({0, 0, 1, 2, 3, 7});
    rules.calm.longestSeconds = pick({0.0, 90.0, 600.0, 3600.0, 1e5});
    rules.calm.earnFirstSafe = oneIn(2);
    rules.cloudDelaySeconds = pick({0.0, -1.0, 5.0, 60.0, 300.0, 3600.0, 1e300});
}

void RandomCycles::changeValue(Quantity quantity) {
    // Unknown, a level, or rarely a number that is none.
    given_[quantity] = static_cast<std::int32_t>(oneIn(30) ? 4 : below(20) % 4);
    const std::array<double, kLevelCount>& limits = rules.levels[quantity].limits;
    values_[quantity] = limits[below(3)] + pick({0.0, 0.0, 0.01, -0.01, 0.7, -0.7, -8.0});
    if (oneIn(25))
        values_[quantity] = limits[2] + 50;
}

void RandomCycles::changeDirection() {
    const std::optional<Sector>& sector =
        rules.levels[oneIn(2) ? Wind : Gust].sectors[below(kLevelCount)];
    direction_ = 22.5 * static_cast<double>(below(16));
    if (oneIn(15))
        direction_ = pick<std::optional<double>>({std::nullopt, kNan, kInfinite, -kInfinite});
    else if (sector && !oneIn(3)) {
        const double bound = pick({sector->from, sector->to, (sector->from + sector->to) / 2});
        const double beside = bound + pick({0.0, 0.0, 0.1, -0.1});
        direction_ = beside < 0 ? beside + 360 : beside;
    }
}

void RandomCycles::next() {
    newWorld = cycle_++ % 5000 == 0;
    if (newWorld)
        now = {pick<std::int64_t>({0, 1, 100'000, 63'000'000'000'123}), 1'800'000'000'000};
    newSession = newWorld || oneIn(400);
    distrusted = !byClient && oneIn(500);
    if (newSession && oneIn(2))
        now = {now.ms + 7'200'000, now.utcMs + 7'200'000};
    if (newWorld || oneIn(250)) {
        changeRules();
        changeDirection();
        for (const Quantity quantity : kAllQuantities)
            changeValue(quantity);
    }
    if (oneIn(400)) // while the rest stays
        rules.safeDelaySeconds = pick({0.0, 5.0, 30.0, 120.0});
    if (oneIn(40)) {
        stepMs_ = pick({1000, 1000, 5000, 10'000, 30'000, 60'000, 3'600'000});
        jitter_ = oneIn(3);
        restless_ = pick({3, 20, 100, 400});
    }
    const auto elapsed = stepMs_ + static_cast<std::int64_t>(jitter_ ? below(1000) : 0);
    now = {now.ms + elapsed, now.utcMs + elapsed};

    byClient = byClient ? !oneIn(20) : oneIn(300);
    clientSays.reset();
    if (byClient && oneIn(5))
        clientSays = oneIn(2);

    for (const Quantity quantity : kAllQuantities) {
        if (oneIn(restless_))
            changeValue(quantity);
    }
    if (oneIn(restless_))
        changeDirection();

    using enum SourceState;
    StationObservation& station = observation.station;
    if (oneIn(station.state == Ok ? 150 : 8))
        station.state = pick({Ok, Ok, Ok, Ok, Old, Unusable, Failed, Absent});
    SensorObservation& sensor = observation.sensor;
    if (oneIn(sensor.state == Ok ? 150 : 8))
        sensor.state = pick({Ok, Ok, Ok, Ok, Old, Unusable, Failed, Absent});
    // A source that is not to be trusted may have left values all the same, or none.
    const bool stationSilent = station.state != Ok && oneIn(2);
    const bool sensorSilent = sensor.state != Ok && oneIn(2);
    station.windDirection = stationSilent ? std::nullopt : direction_;
    station.valuesMissing = false;
    for (const Quantity quantity : kStationQuantities) {
        observation.values[quantity] = values_[quantity];
        if (stationSilent || oneIn(600)) {
            observation.values[quantity].reset();
            station.valuesMissing = true;
        }
    }
    for (const Quantity quantity : kSensorQuantities) {
        observation.givenLevels[quantity].reset();
        if (!sensorSilent)
            observation.givenLevels[quantity] = given_[quantity];
    }
}

std::string RandomCycles::describe() const {
    std::ostringstream out;
    out << "at " << now.ms << " ms" << (newSession ? ", session start" : "")
        << (distrusted ? ", distrusted" : "") << (byClient ? ", by a client" : "") << "\nstation "
        << static_cast<int>(observation.station.state)
        << (observation.station.valuesMissing ? " with values missing" : "") << ", sensor "
        << static_cast<int>(observation.sensor.state) << ", direction ";
    if (observation.station.windDirection)
        out << *observation.station.windDirection;
    out << "\nold station " << rules.stationOldIsUnsafe << ", failed sensor "
        << rules.sensorFailedIsUnsafe << ", beyond " << rules.beyondIsUnsafe << ", safe delay "
        << rules.safeDelaySeconds << " s, cloud delay " << rules.cloudDelaySeconds << " s, flaps "
        << rules.calm.closures << " up to " << rules.calm.longestSeconds << " s, first earned "
        << rules.calm.earnFirstSafe;
    for (const Quantity quantity : kAllQuantities) {
        out << "\n" << nameOf(quantity) << ":";
        if (observation.givenLevels[quantity])
            out << " given " << *observation.givenLevels[quantity];
        if (observation.values[quantity])
            out << " " << *observation.values[quantity];
        for (std::size_t i = 0; i < kLevelCount; ++i) {
            const LevelRules& row = rules.levels[quantity];
            out << " | <= " << row.limits[i] << (row.unsafe[i] ? " unsafe" : "");
            if (row.sectors[i])
                out << " [" << row.sectors[i]->from << ".." << row.sectors[i]->to << " "
                    << row.sectors[i]->minutes << " min]";
        }
    }
    return out.str();
}

} // namespace skyhold
