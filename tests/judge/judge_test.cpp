// SPDX-License-Identifier: GPL-3.0-or-later
#include "judge/judge.h"
#include "judge/nearest.h"

#include "model/conditions.h"
#include "plain_model.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace skyhold {

namespace {

using enum Quantity;
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinite = std::numeric_limits<double>::infinity();

// A calm, clear, dry night, judged by what a fresh store has. Sectors are those of a test.
struct Judging : testing::Test {
    Judging() {
        for (const QuantityRow& row : quantityTable()) {
            LevelRules& levels = rules.levels[row.quantity];
            for (std::size_t i = 0; i < kLevelCount; ++i) {
                levels.unsafe[i] = row.levels[i].unsafe;
                if (row.hasLimits())
                    levels.limits[i] = QByteArray(row.levels[i].limit).toDouble();
            }
        }
        for (const Quantity quantity : kSensorQuantities)
            set(quantity, 1);
        for (const auto& [quantity, value] : {std::pair{Wind, 5.0},
                                              {Gust, 5.0},
                                              {Temperature, 10.0},
                                              {Dew, 10.0},
                                              {Humidity, 50.0}})
            set(quantity, value);
        observation.station.state = observation.sensor.state = SourceState::Ok;
        observation.station.windDirection = 180;
        beginSession(rules, memory, now);
    }

    // A level of the sensor's quantities, a value of the station's.
    void set(Quantity quantity, double value) {
        if (rowOf(quantity).source == SourceName::Sensor)
            observation.givenLevels[quantity] = static_cast<std::int32_t>(value);
        else
            observation.values[quantity] = value;
    }
    void setSector(Quantity quantity, const std::optional<Sector>& sector) {
        rules.levels[quantity].sectors = {sector, sector, sector};
    }
    Judgement after(double seconds, bool byClient = false) {
        const auto ms = static_cast<std::int64_t>(seconds * 1000);
        now = {now.ms + ms, now.utcMs + ms};
        return judge(observation, rules, memory, now, byClient);
    }
    static std::string causes(const Judgement& judgement) {
        std::string text;
        for (const std::string& cause : plain(judgement).causes)
            text += (text.empty() ? "" : ", ") + cause;
        return text;
    }

    Rules rules;
    Observation observation;
    JudgeMemory memory;
    Moment now{63'000'000'000'000, 1'800'000'000'000};
};

TEST_F(Judging, EachValueHasItsLevelAndAFlaggedLevelAloneIsUnsafe) {
    const struct {
        Quantity quantity;
        double value;
        std::int32_t level;
        bool unsafe;
    } rows[] = {
        {Cloud, 0, 0, false},
        {Cloud, 2, 2, false},
        {Cloud, 3, 3, true},
        {Cloud, 4, 4, false},
        {Cloud, -1, -1, false},
        {Rain, 0, 0, false},
        {Rain, 2, 2, true},
        {Rain, 3, 3, true},
        {Rain, 4, 4, false},
        {Brightness, 2, 2, false},
        {Brightness, 3, 3, true},
        {Brightness, -1, -1, false},
        {Wind, 10, 1, false},
        {Wind, 10.01, 2, true},
        {Wind, 99, 3, true},
        {Wind, 99.5, 0, false},
        {Gust, 0, 1, false},
        {Gust, 20, 2, true},
        {Gust, 20.1, 3, true},
        {Temperature, -5, 1, true},
        {Temperature, -4.9, 2, false},
        {Temperature, 50.1, 3, true},
        {Temperature, 99.1, 0, false},
        {Dew, -2, 1, true},
        {Dew, 2.5, 1, true},
        {Dew, 3, 1, true},
        {Dew, 3.01, 2, false},
        {Dew, 5, 2, false},
        {Dew, 5.1, 3, false},
        {Dew, 100, 0, false},
        {Humidity, 80, 1, false},
        {Humidity, 90, 2, false},
        {Humidity, 90.1, 3, true},
        {Humidity, 100, 0, false},
        {Wind, kNan, 0, false},
        {Wind, -HUGE_VAL, 0, false},
    };
    const Observation calm = observation;
    for (const auto& [quantity, value, level, unsafe] : rows) {
        SCOPED_TRACE(testing::Message() << nameOf(quantity) << " " << value);
        observation = calm;
        set(quantity, value);
        const Judgement judgement = after(1);
        EXPECT_EQ(judgement.levels[quantity], level);
        EXPECT_EQ(judgement.holds[quantity], level >= 1 && level <= 3);
        EXPECT_EQ(judgement.UnsafeFlag, unsafe);
        EXPECT_EQ(causes(judgement),
                  unsafe ? nameOf(quantity) + (" " + std::to_string(level)) : "");
    }
    // Limits out of order give the lowest level that matches.
    rules.levels[Wind].limits = {20, 10, 99};
    for (const auto& [value, level] : {std::pair{15, 1}, {21, 3}}) {
        set(Wind, value);
        EXPECT_EQ(after(1).levels[Wind], level);
    }
}

TEST_F(Judging, SafeDelayWalks) {
    constexpr int kUnsafe = -2; // a level is unsafe, and the verdict at once
    constexpr int kSafe = -1;   // no level is unsafe, nor the verdict
    struct Step {
        double seconds; // the clock before the cycle
        int outcome;    // one of these, or how long safe is still held back
    };
    const struct {
        const char* name;
        double delay;
        std::vector<Step> steps;
        CalmRules calm{};
    } walks[] = {
        {"first cycle of a session safe", 60, {{0, kSafe}, {10, kSafe}}},
        {"unsafe at any time at once", 60, {{0, kUnsafe}, {5, kUnsafe}, {5, 60}}},
        {"a new session forgets that wait", 60, {{0, kSafe}, {10, kSafe}}},
        {"no delay", 0, {{0, kUnsafe}, {5, kSafe}, {5, kUnsafe}}},
        {"negative is no delay", -5, {{0, kUnsafe}, {5, kSafe}}},
        {"the whole wait",
         60,
         {{0, kUnsafe}, {5, 60}, {1, 59}, {58, 1}, {1, kSafe}, {99, kSafe}, {5, kUnsafe}, {5, 60}}},
        {"one unsafe cycle ends the wait, the next safe one begins it anew",
         60,
         {{0, kUnsafe}, {5, 60}, {50, 10}, {5, kUnsafe}, {5, 60}, {59, 1}, {1, kSafe}}},
        {"after a safe first one", 60, {{0, kSafe}, {30, kUnsafe}, {5, 60}, {60, kSafe}}},
        {"halves round to even", 2.5, {{0, kUnsafe}, {5, 2}, {1, 2}, {1, 0}, {1, kSafe}}},
        {"seconds by their boundaries", 2, {{0.1, kUnsafe}, {0.8, 2}, {1.09, 1}, {0.01, kSafe}}},
        {"that began before the clock's zero", 2.5, {{0.1, kSafe}, {0.5, kSafe}}},
        {"beyond every range", 1e300, {{0, kUnsafe}, {5, 2'147'483'647}}},
        {"no number", kNan, {{0, kUnsafe}, {5, 2'147'483'647}}},
        {"two closures within an hour double the delay, an hour without one undoes it",
         60,
         {{0, kSafe},
          {5, kUnsafe},
          {5, 60},
          {60, kSafe},
          {5, kUnsafe},
          {5, 120},
          {60, 60},
          {60, kSafe},
          {3400, kUnsafe},
          {1, 120},
          {120, kSafe},
          {3480, kUnsafe},
          {5, 60}},
         {.closures = 2}},
        {"up to a bound, from a minute on, and again at each further number",
         0,
         {{0, kSafe}, {5, kUnsafe}, {5, 120}, {120, kSafe}, {5, kUnsafe}, {5, 200}},
         {.closures = 1, .longestSeconds = 200}},
        {"never shorter",
         60,
         {{0, kSafe}, {5, kUnsafe}, {5, 60}},
         {.closures = 1, .longestSeconds = 5}},
        {"the first safe is earned", 60, {{0, 60}, {59, 1}, {1, kSafe}}, {.earnFirstSafe = true}},
        {"from unsafe, too", 60, {{0, kUnsafe}, {5, 60}, {60, kSafe}}, {.earnFirstSafe = true}},
        {"with no delay", 0, {{0, kSafe}}, {.earnFirstSafe = true}},
    };
    for (const Moment& start : {now, Moment{0, 1'800'000'000'000}}) {
        for (const auto& [name, delay, steps, calm] : walks) {
            now = start;
            rules.safeDelaySeconds = delay;
            rules.calm = calm;
            beginSession(rules, memory, now);
            for (std::size_t i = 0; i < steps.size(); ++i) {
                SCOPED_TRACE(testing::Message() << name << ", step " << i);
                const int outcome = steps[i].outcome;
                set(Rain, outcome == kUnsafe ? RainRain : RainDry);
                const Judgement judgement = after(steps[i].seconds);
                EXPECT_EQ(judgement.UnsafeFlag, outcome != kSafe);
                EXPECT_EQ(judgement.waitSeconds, std::max(outcome, 0));
                EXPECT_EQ(judgement.waiting(), outcome >= 0);
            }
        }
    }
}

TEST_F(Judging, TheNearestLimitIsTheOneWithTheLeastOfItsSafeValuesLeft) {
    rules.beyondIsUnsafe = false;
    for (LevelRules& levels : rules.levels)
        levels.unsafe = {};
    const auto nearest = [this]() -> std::string {
        const auto found = nearestLimit(observation, rules, after(1));
        if (!found)
            return "none";
        std::ostringstream out;
        out << nameOf(found->quantity) << (found->above ? " > " : " <= ") << found->limit << " "
            << std::round(found->share * 100);
        return out.str();
    };
    EXPECT_EQ(nearest(), "none");
    rules.levels[Wind] = {.limits = {10, 20, 99}, .unsafe = {false, false, true}, .sectors = {}};
    set(Wind, 5);
    EXPECT_EQ(nearest(), "Wind > 20 75");
    rules.levels[Humidity] = {.limits = {50, 80, 99}, .unsafe = {true, false, true}, .sectors = {}};
    set(Humidity, 78);
    EXPECT_EQ(nearest(), "Humidity > 80 7");
    set(Humidity, 53);
    EXPECT_EQ(nearest(), "Humidity <= 50 10");
    set(Humidity, 45); // counts itself
    EXPECT_EQ(nearest(), "Wind > 20 75");
    rules.beyondIsUnsafe = true;
    set(Wind, 19);
    rules.levels[Wind].unsafe = {};
    EXPECT_EQ(nearest(), "Wind > 99 81") << "the last limit";
    observation.station.state = SourceState::Old;
    EXPECT_EQ(nearest(), "none");
}

TEST_F(Judging, SectorBoundsAreInclusiveAndANegativeStartWrapsThroughNorth) {
    const struct {
        std::optional<Sector> sector;
        std::vector<std::optional<double>> inside, outside;
    } rows[] = {
        {Sector{90, 180, 0}, {90, 180}, {89.9, 180.1}},
        {Sector{-30, 30, 0}, {350, 330, 0, 20, 30}, {329.9, 40}},
        {Sector{-359, 0, 0}, {180}, {}},
        {Sector{0, 0, 0}, {0}, {22.5}},
        {Sector{180, 90, 0}, {}, {120}},
        // Without a sector, or a direction to test, nothing is restricted.
        {std::nullopt, {123, std::nullopt}, {}},
        {Sector{90, 180, 0}, {std::nullopt, kNan, kInfinite, -kInfinite}, {}},
    };
    set(Wind, 15);
    const auto expect = [this](std::optional<double> direction, bool inside) {
        SCOPED_TRACE(direction.value_or(-1));
        observation.station.windDirection = direction;
        memory.OutsideSince[Quantity::Wind] = 1;
        EXPECT_EQ(causes(after(1)), inside ? "Wind 2" : "");
        EXPECT_EQ(memory.OutsideSince[Quantity::Wind], inside ? 1 : now.ms);
    };
    for (const auto& [sector, inside, outside] : rows) {
        setSector(Wind, sector);
        for (const auto& direction : inside)
            expect(direction, true);
        for (const auto& direction : outside)
            expect(direction, false);
    }
}

} // namespace

} // namespace skyhold
