// SPDX-License-Identifier: GPL-3.0-or-later
#include "judge/judge.h"

#include "judge/safety.h"
#include "judge/sectors.h"
#include "model/conditions.h"

namespace skyhold {

namespace {

constexpr std::size_t indexOf(std::int32_t level) {
    return static_cast<std::size_t>(level - 1);
}

// The level of this cycle. Without usable input the last one stays, and goes on counting; a single
// value that is missing in what can be used has none.
std::int32_t levelNow(Quantity quantity, const Observation& observation, const Rules& rules,
                      std::int32_t last) {
    if (rowOf(quantity).source == SourceName::Sensor)
        return observation.givenLevels[quantity].value_or(last);
    if (!observation.station.usable())
        return last;
    const std::optional<double> value = observation.values[quantity];
    return value ? bandLevel(*value, rules.levels[quantity].limits) : 0;
}

// As the level, this stays without usable input.
bool isBeyond(Quantity quantity, const Observation& observation, const Rules& rules, bool last) {
    if (!rowOf(quantity).hasLimits())
        return false;
    if (!observation.station.usable())
        return last;
    const std::optional<double> value = observation.values[quantity];
    return value && *value > rules.levels[quantity].limits.back() &&
           bandLevel(*value, rules.levels[quantity].limits) == 0;
}

// Whether the level counts now. Notes what the tests must remember, whether or not the level is
// marked as unsafe; once per quantity and cycle.
bool levelHolds(Quantity quantity, std::int32_t level, const Rules& rules, JudgeMemory& memory,
                std::int64_t nowMs) {
    if (level < 1 || level > static_cast<std::int32_t>(kLevelCount))
        return false; // unknown, or a number that is not a level
    if (quantity == Quantity::Cloud)
        return CloudLevelActive(level, rules.cloudDelaySeconds, memory, nowMs);
    if (!rowOf(quantity).hasSectors())
        return true;
    return SectorHolds(rules.levels[quantity].sectors[indexOf(level)], memory.WindDirection,
                       memory.OutsideSince[quantity], nowMs);
}

// Notes since when something stands.
void noteSince(bool stands, std::int64_t& since, std::int64_t nowUtcMs) {
    if (!stands)
        since = 0;
    else if (since == 0)
        since = nowUtcMs;
}

Causes findCauses(const Observation& observation, const Rules& rules, const Judgement& judgement,
                  JudgeMemory& memory, std::int64_t nowUtcMs) {
    Causes causes;
    const auto beyondCounts = [&](Quantity quantity) {
        return judgement.beyond[quantity] && rules.beyondIsUnsafe;
    };
    for (const Quantity quantity : kDecisionOrder) {
        const bool counts = judgement.unsafe[quantity] || beyondCounts(quantity);
        noteSince(counts, memory.causeSince[quantity], nowUtcMs);
        if (judgement.unsafe[quantity])
            causes.append({.kind = CauseKind::Level,
                           .quantity = quantity,
                           .level = judgement.levels[quantity],
                           .sinceUtcMs = memory.causeSince[quantity]});
    }
    for (const Quantity quantity : kStationQuantities) {
        if (beyondCounts(quantity))
            causes.append({.kind = CauseKind::Beyond,
                           .quantity = quantity,
                           .sinceUtcMs = memory.causeSince[quantity]});
    }
    const auto source = [&](SourceName name, bool faulty, bool isUnsafe, std::int64_t& since) {
        noteSince(faulty, since, nowUtcMs);
        if (faulty && isUnsafe)
            causes.append({.kind = CauseKind::Source, .source = name, .sinceUtcMs = since});
    };
    source(SourceName::Station, observation.station.faulty(), rules.stationOldIsUnsafe,
           memory.stationOldSince);
    source(SourceName::Sensor, observation.sensor.failed(), rules.sensorFailedIsUnsafe,
           memory.sensorFailedSince);
    return causes;
}

} // namespace

Judgement judge(const Observation& observation, const Rules& rules, JudgeMemory& memory, Moment now,
                bool byClient) {
    Judgement judgement;
    judgement.byClient = byClient;
    if (observation.station.usable())
        memory.WindDirection = observation.station.windDirection;
    for (const Quantity quantity : kAllQuantities) {
        const std::int32_t last = memory.levels[quantity];
        const std::int32_t level = levelNow(quantity, observation, rules, last);
        if (level != last || memory.levelSince[quantity] == 0)
            memory.levelSince[quantity] = now.utcMs;
        memory.levels[quantity] = level;
        judgement.levels[quantity] = level;
        memory.beyond[quantity] = isBeyond(quantity, observation, rules, memory.beyond[quantity]);
        judgement.beyond[quantity] = memory.beyond[quantity];
        judgement.holds[quantity] = levelHolds(quantity, level, rules, memory, now.ms);
        judgement.unsafe[quantity] =
            judgement.holds[quantity] && rules.levels[quantity].unsafe[indexOf(level)];
    }
    judgement.causes = findCauses(observation, rules, judgement, memory, now.utcMs);
    if (!byClient) {
        const bool unsafe = !judgement.causes.isEmpty();
        if (unsafe) {
            memory.lastUnsafe = judgement.causes.front();
            memory.lastUnsafeUtcMs = now.utcMs;
        }
        judgement.delaySeconds = delayInForce(rules, memory.flap, now.ms);
        const bool wasSafe = memory.SafeState != 0 && !memory.UnsafeFlag;
        const DelayedVerdict verdict = applySafeDelay(unsafe, judgement.delaySeconds, memory,
                                                      now.ms, rules.calm.earnFirstSafe);
        if (wasSafe && verdict.unsafe)
            noteClosure(rules, memory.flap, now.ms);
        judgement.lengthened = memory.flap.doublings > 0;
        publishVerdict(memory, verdict.unsafe, now);
        memory.SafeDelayRemaining = verdict.waitSeconds;
        judgement.waitSeconds = verdict.waitSeconds;
    }
    judgement.UnsafeFlag = memory.UnsafeFlag;
    return judgement;
}

void beginSession(const Rules& rules, JudgeMemory& memory, Moment now) {
    constexpr std::int64_t kLongAgoMs = 86'400'000; // more than any sector's minutes
    memory.SafeState = 0;
    memory.SafeDelayRemaining = 0;
    memory.PrevCloudLevel = CloudCloudy;
    memory.CloudChangeTime = 0;
    memory.OutsideSince.values.fill(rules.calm.earnFirstSafe ? now.ms - kLongAgoMs : now.ms);
    memory.flap = {};
    memory.causeSince = {};
    memory.levelSince = {};
    memory.stationOldSince = 0;
    memory.sensorFailedSince = 0;
    memory.verdictSince = 0;
    memory.lastUnsafeUtcMs = 0;
}

void publishVerdict(JudgeMemory& memory, bool unsafe, Moment now) {
    if (memory.UnsafeFlag != unsafe || memory.verdictSince == 0)
        memory.verdictSince = now.utcMs;
    memory.UnsafeFlag = unsafe;
}

void distrust(JudgeMemory& memory, Moment now) {
    memory.SafeState = 1;
    publishVerdict(memory, true, now);
}

} // namespace skyhold
