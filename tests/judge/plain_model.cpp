// SPDX-License-Identifier: GPL-3.0-or-later
#include "plain_model.h"

#include <cmath>
#include <limits>

namespace skyhold {

using enum Quantity;

const char* nameOf(Quantity quantity) {
    static constexpr const char* names[] = {"Cloud", "Rain",        "Brightness", "Wind",
                                            "Gust",  "Temperature", "Dew",        "Humidity"};
    return names[static_cast<std::size_t>(quantity)];
}

static bool flagged(const LevelRules& rules, std::int32_t level) {
    if (level == 1)
        return rules.unsafe[0];
    if (level == 2)
        return rules.unsafe[1];
    if (level == 3)
        return rules.unsafe[2];
    return false;
}

static std::int32_t band(double x, const std::array<double, 3>& limits) {
    if (x <= limits[0])
        return 1;
    if (x <= limits[1])
        return 2;
    if (x <= limits[2])
        return 3;
    return 0;
}

void PlainModel::beginSession(const Rules& rules, Moment now) {
    safeState_ = 0;
    previousCloud_ = 2;
    cloudChange_.reset();
    standing_.clear();
    windOutside_ = gustOutside_ = static_cast<long double>(now.ms);
    if (rules.calm.earnFirstSafe)
        windOutside_ = gustOutside_ = -1e30L;
    closures_.clear();
    counted_ = 0;
    doublings_ = 0;
}

// As if the last decision had been unsafe.
void PlainModel::distrust() {
    safeState_ = 1;
    unsafeFlag_ = true;
}

void PlainModel::readLevels(const Observation& observation, const Rules& rules) {
    for (const Quantity quantity : {Cloud, Rain, Brightness}) {
        if (observation.givenLevels[quantity])
            levels_[quantity] = *observation.givenLevels[quantity];
    }
    if (observation.station.state != SourceState::Ok)
        return; // levels and direction stay
    direction_ = observation.station.windDirection;
    if (direction_ && !std::isfinite(*direction_))
        direction_.reset();
    for (const Quantity quantity : {Wind, Gust, Temperature, Dew, Humidity}) {
        const std::optional<double> value = observation.values[quantity];
        const std::array<double, 3>& limits = rules.levels[quantity].limits;
        levels_[quantity] = value ? band(*value, limits) : 0;
        beyond_[quantity] = value && levels_[quantity] == 0;
    }
}

bool PlainModel::cloudCounts(double delaySeconds) {
    const std::int32_t cloud = levels_[Cloud];
    if (cloud != 1 && cloud != 2 && cloud != 3)
        return false;
    const std::int32_t previous = previousCloud_;
    if (previous != cloud) {
        previousCloud_ = cloud;
        cloudChange_ = now_;
    }
    if (cloud == 2) {
        if (previous == 3) {
            cloudChange_.reset();
            return true;
        }
        return !cloudChange_ || now_ - *cloudChange_ >= delaySeconds * 1000.0L;
    }
    if (previous == 3)
        cloudChange_.reset();
    return true;
}

bool PlainModel::sectorHolds(const std::optional<Sector>& sector, long double& outsideSince) const {
    if (!sector)
        return true;
    bool inside = true; // where the direction is not known
    if (direction_ && sector->from >= 0)
        inside = sector->from <= *direction_ && *direction_ <= sector->to;
    if (direction_ && sector->from < 0)
        inside = *direction_ >= sector->from + 360 || *direction_ <= sector->to;
    if (inside)
        return now_ - outsideSince >= sector->minutes * 60'000.0L;
    outsideSince = now_;
    return false;
}

// Returns the seconds to wait.
std::int64_t PlainModel::decide(bool unsafe, double delay, bool earnFirst) {
    if (safeState_ == 0 && earnFirst)
        safeState_ = 1;
    if (safeState_ == 0) {
        delayStart_ = now_ - delay * 1000.0L;
        safeState_ = unsafe ? 1 : 2;
        unsafeFlag_ = unsafe;
        return 0;
    }
    if ((safeState_ == 1 && !unsafe) || (safeState_ == 2 && unsafe))
        delayStart_ = now_;
    if (delay <= 0 || unsafe) {
        safeState_ = unsafe ? 1 : 2;
        unsafeFlag_ = unsafe;
        return 0;
    }
    // Whole seconds, by their boundaries.
    const long double elapsed = std::fabs(std::floor(now_ / 1000) - std::floor(delayStart_ / 1000));
    safeState_ = 2;
    unsafeFlag_ = delay > elapsed;
    if (!unsafeFlag_)
        return 0;
    const long double remaining = std::nearbyint(delay - elapsed); // halves to even
    const std::int32_t most = std::numeric_limits<std::int32_t>::max();
    return remaining > most ? most : static_cast<std::int64_t>(remaining);
}

double PlainModel::lengthened(const Rules& rules) const {
    double delay = rules.safeDelaySeconds < 60 ? 60 : rules.safeDelaySeconds;
    for (int i = 0; i < doublings_ && delay < rules.calm.longestSeconds; ++i)
        delay *= 2;
    if (delay > rules.calm.longestSeconds)
        delay = rules.calm.longestSeconds;
    if (doublings_ == 0 || delay < rules.safeDelaySeconds)
        return rules.safeDelaySeconds;
    return delay;
}

void PlainModel::closed(const Rules& rules) {
    closures_.push_back(now_);
    std::size_t within = 0;
    for (std::size_t i = counted_; i < closures_.size(); ++i) {
        if (now_ - closures_[i] < 3'600'000)
            ++within;
    }
    if (static_cast<std::int64_t>(within) < rules.calm.closures)
        return;
    counted_ = closures_.size();
    ++doublings_;
}

PlainAnswer PlainModel::cycle(const Observation& observation, const Rules& rules, Moment now,
                              bool byClient) {
    now_ = static_cast<long double>(now.ms);
    readLevels(observation, rules);

    PlainAnswer answer;
    answer.levels = levels_;
    answer.beyond = beyond_;
    const auto test = [&](Quantity quantity, bool levelCounts) {
        const std::int32_t level = levels_[quantity];
        answer.counts[quantity] = levelCounts && level >= 1 && level <= 3;
        if (answer.counts[quantity] && flagged(rules.levels[quantity], level))
            answer.causes.push_back(nameOf(quantity) + (" " + std::to_string(level)));
    };
    // Of wind and gust only the sector of the present level is tested.
    const auto testInSector = [&](Quantity quantity, long double& outsideSince) {
        bool holds = false;
        for (const std::int32_t level : {3, 2, 1}) {
            const auto i = static_cast<std::size_t>(level - 1);
            if (levels_[quantity] == level)
                holds = sectorHolds(rules.levels[quantity].sectors[i], outsideSince);
        }
        test(quantity, holds);
    };
    test(Cloud, cloudCounts(rules.cloudDelaySeconds));
    test(Rain, true);
    testInSector(Wind, windOutside_);
    testInSector(Gust, gustOutside_);
    test(Dew, true);
    test(Humidity, true);
    test(Temperature, true);
    test(Brightness, true);
    const bool stationFaulty =
        observation.station.state != SourceState::Ok || observation.station.valuesMissing;
    const bool sensorFailed = observation.sensor.state != SourceState::Ok;
    for (const Quantity quantity : kStationQuantities) {
        if (beyond_[quantity] && rules.beyondIsUnsafe)
            answer.causes.push_back(nameOf(quantity) + std::string(" beyond"));
    }
    if (rules.stationOldIsUnsafe && stationFaulty)
        answer.causes.push_back("Station");
    if (rules.sensorFailedIsUnsafe && sensorFailed)
        answer.causes.push_back("Sensor");

    // A cause stands while its quantity speaks for unsafe, or its source is faulty, in every cycle.
    std::map<std::string, std::int64_t> standing;
    if (stationFaulty)
        standing["Station"] = standing_.contains("Station") ? standing_["Station"] : now.utcMs;
    if (sensorFailed)
        standing["Sensor"] = standing_.contains("Sensor") ? standing_["Sensor"] : now.utcMs;
    for (const std::string& cause : answer.causes) {
        const std::string name = cause.substr(0, cause.find(' '));
        standing[name] = standing_.contains(name) ? standing_[name] : now.utcMs;
        answer.since.push_back(standing[name]);
    }
    standing_ = standing;

    if (!byClient) {
        if (rules.calm.closures <= 0 ||
            (!closures_.empty() && now_ - closures_.back() >= 3'600'000)) {
            closures_.clear();
            counted_ = 0;
            doublings_ = 0;
        }
        const bool wasSafe = safeState_ != 0 && !unsafeFlag_;
        answer.wait = decide(!answer.causes.empty(), lengthened(rules), rules.calm.earnFirstSafe);
        if (wasSafe && unsafeFlag_ && rules.calm.closures > 0)
            closed(rules);
    }
    answer.unsafe = unsafeFlag_;
    return answer;
}

PlainAnswer plain(const Judgement& judgement) {
    PlainAnswer answer;
    answer.levels = judgement.levels;
    answer.counts = judgement.holds;
    answer.beyond = judgement.beyond;
    for (const Cause& cause : judgement.causes) {
        answer.since.push_back(cause.sinceUtcMs);
        if (cause.kind == CauseKind::Source)
            answer.causes.push_back(cause.source == SourceName::Station ? "Station" : "Sensor");
        else
            answer.causes.push_back(
                nameOf(cause.quantity) +
                (cause.kind == CauseKind::Beyond ? " beyond" : " " + std::to_string(cause.level)));
    }
    answer.unsafe = judgement.UnsafeFlag;
    answer.wait = judgement.waitSeconds;
    return answer;
}

} // namespace skyhold
