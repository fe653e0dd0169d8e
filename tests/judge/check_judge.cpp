// SPDX-License-Identifier: GPL-3.0-or-later
// Random cycles through the judge and through the plain model: both must give the same answers, and
// the judge must keep the promise of the safe delay, whatever either of them computes.
#include "judge/judge.h"

#include "model/conditions.h"
#include "plain_model.h"
#include "random_cycles.h"

#include <gtest/gtest.h>

#include <iostream>
#include <sstream>

namespace skyhold {

namespace {

// Armed and bad, as this one cycle shows it: what no sector and no cloud delay excuses.
bool plainlyBad(const Observation& observation, const Rules& rules) {
    if (rules.sensorFailedIsUnsafe && observation.sensor.failed())
        return true;
    if (rules.stationOldIsUnsafe && observation.station.faulty())
        return true;
    for (const Quantity quantity : kSensorQuantities) {
        const std::int32_t level = observation.givenLevels[quantity].value_or(0);
        const bool delayed = quantity == Quantity::Cloud && level == CloudCloudy;
        if (level >= 1 && level <= 3 && !delayed &&
            rules.levels[quantity].unsafe[static_cast<std::size_t>(level - 1)])
            return true;
    }
    for (const Quantity quantity : kStationQuantities) {
        const std::optional<double> value = observation.values[quantity];
        const auto& [limits, unsafe, sectors] = rules.levels[quantity];
        if (!value || !observation.station.usable())
            continue;
        std::size_t i = 0;
        while (i < limits.size() && *value > limits[i])
            ++i;
        if (i == limits.size() ? rules.beyondIsUnsafe : unsafe[i] && !sectors[i])
            return true;
    }
    return false;
}

// Never safe before every armed input was good throughout the delay; only the first decision of a
// session needs no time before it, unless that is earned, too.
struct Promise {
    bool mustWait = false;
    bool good = false;
    bool decided = false; // the rules, in this session
    std::int64_t goodSinceMs = 0;
    void bad() {
        mustWait = true;
        good = false;
    }
    bool keptBy(bool unsafe, bool isBad, double delaySeconds, std::int64_t nowMs) {
        if (isBad) {
            bad();
            return unsafe;
        }
        if (!good)
            goodSinceMs = nowMs;
        good = true;
        // Seconds are counted by their boundaries, which can be all but one second short.
        const auto waited = static_cast<double>(nowMs - goodSinceMs) / 1000;
        return unsafe || !mustWait || delaySeconds <= 0 || waited > delaySeconds - 1;
    }
};

std::ostream& operator<<(std::ostream& out, const PlainAnswer& answer) {
    for (const Quantity quantity : kAllQuantities)
        out << nameOf(quantity) << " " << answer.levels[quantity]
            << (answer.counts[quantity] ? "" : " (does not count)")
            << (answer.beyond[quantity] ? " (beyond)" : "") << ", ";
    for (std::size_t i = 0; i < answer.causes.size(); ++i)
        out << "because of " << answer.causes[i] << " since " << answer.since[i] << ", ";
    return out << (answer.unsafe ? "UNSAFE" : "SAFE") << ", wait " << answer.wait << " s";
}

std::uint64_t fromEnvironment(const char* name, std::uint64_t usual) {
    bool isNumber = false;
    const qulonglong value = qEnvironmentVariable(name).toULongLong(&isNumber);
    return isNumber ? value : usual;
}

// SKYHOLD_CHECK_CYCLES and SKYHOLD_CHECK_SEED choose another run; ./dev check-judge sets them.
TEST(CheckJudge, AgreesWithThePlainModelAndKeepsThePromiseOfTheDelay) {
    const std::uint64_t cycles = fromEnvironment("SKYHOLD_CHECK_CYCLES", 100'000);
    const std::uint64_t seed = fromEnvironment("SKYHOLD_CHECK_SEED", 1);
    RandomCycles random(seed);
    PlainModel model;
    JudgeMemory memory;
    Promise promise;
    std::map<std::string, std::uint64_t> seen;
    for (std::uint64_t i = 0; i < cycles; ++i) {
        random.next();
        const Rules& rules = random.rules;
        if (random.newWorld) {
            memory = {};
            model = {};
        }
        if (random.newSession) {
            beginSession(rules, memory, random.now);
            model.beginSession(rules, random.now);
            promise = {};
        }
        if (random.distrusted) {
            distrust(memory, random.now);
            model.distrust();
            promise.bad();
        }
        if (random.clientSays) {
            memory.UnsafeFlag = *random.clientSays;
            model.clientSays(*random.clientSays);
        }
        const Judgement judgement =
            judge(random.observation, rules, memory, random.now, random.byClient);
        const PlainAnswer judged = plain(judgement);
        const PlainAnswer expected =
            model.cycle(random.observation, rules, random.now, random.byClient);
        if (!random.byClient && !std::exchange(promise.decided, true) && rules.calm.earnFirstSafe)
            promise.bad();
        const auto report = [&] {
            std::ostringstream out;
            out << "cycle " << i << " of seed " << seed << "\n"
                << random.describe() << "\njudge: " << judged << "\nmodel: " << expected;
            return out.str();
        };
        ASSERT_TRUE(judged == expected) << report();
        ASSERT_TRUE(random.byClient ||
                    promise.keptBy(judged.unsafe, plainlyBad(random.observation, rules),
                                   rules.safeDelaySeconds, random.now.ms))
            << "Safe too early: " << report();
        for (const Quantity quantity : kAllQuantities) {
            const bool isLevel = judged.levels[quantity] >= 1 && judged.levels[quantity] <= 3;
            ASSERT_EQ(judgement.unsafe[quantity],
                      judged.counts[quantity] &&
                          rules.levels[quantity]
                              .unsafe[static_cast<std::size_t>(judged.levels[quantity] - 1)])
                << report();
            if (isLevel && !judged.counts[quantity])
                ++seen[nameOf(quantity) + std::string(" does not count")];
        }
        if (judgement.lengthened && judgement.waiting())
            ++seen["waiting longer"];
        for (const std::string& cause : judged.causes)
            ++seen[cause];
        ++seen[random.byClient    ? "by a client"
               : judged.wait > 0  ? "waiting"
               : judged.unsafe    ? "unsafe"
               : promise.mustWait ? "safe again"
                                  : "safe from the start"];
    }
    // A run that meets too little proves too little.
    for (const Quantity quantity : kAllQuantities) {
        for (const char* level : {" 1", " 2", " 3"})
            EXPECT_GT(seen[nameOf(quantity) + std::string(level)], cycles / 1000) << level;
    }
    for (const char* what :
         {"Cloud does not count", "Wind does not count", "Gust does not count", "Wind beyond",
          "Humidity beyond", "Station", "Sensor", "by a client", "waiting", "waiting longer",
          "unsafe", "safe again", "safe from the start"})
        EXPECT_GT(seen[what], cycles / 300) << what;
    if (HasFailure() || qEnvironmentVariableIsSet("SKYHOLD_CHECK_CYCLES")) {
        for (const auto& [what, times] : seen)
            std::cout << times << " " << what << "\n";
    }
}

} // namespace

} // namespace skyhold
