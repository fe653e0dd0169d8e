#include "simulators/scenario.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

namespace skyhold {
namespace {

const QDateTime kStart(QDate(2026, 11, 16), QTime(22, 0));

Weather quickAt(int second) {
    return weatherAt(Scenario::Quick, kStart, kStart.addSecs(second));
}

// A whole day of the night scenario from noon to noon, every 5 s.
const std::vector<Weather>& night() {
    static const std::vector<Weather> samples = [] {
        std::vector<Weather> made;
        const QDateTime noon(QDate(2026, 11, 16), QTime(12, 0));
        for (int second = 0; second <= 24 * 60 * 60; second += 5)
            made.push_back(weatherAt(Scenario::Night, noon, noon.addSecs(second)));
        return made;
    }();
    return samples;
}

// What the monitor's default limits and unsafe levels say.
bool safeByDefault(const Weather& weather) {
    const double spread = weather.temperature - weather.dewPoint;
    return weather.cloudCondition >= 1 && weather.cloudCondition <= 2 &&
           weather.rainCondition == 1 && weather.brightnessCondition >= 1 &&
           weather.brightnessCondition <= 2 && weather.wind <= 10 && weather.gust <= 10 &&
           weather.temperature > -5 && weather.temperature <= 50 && spread > 3 && spread <= 99 &&
           weather.humidity <= 90;
}

// The values that a level takes one after another, without repetitions.
std::vector<int> sequence(const std::vector<Weather>& samples,
                          const std::function<int(const Weather&)>& level) {
    std::vector<int> seen;
    for (const Weather& weather : samples) {
        const int now = level(weather);
        if (seen.empty() || seen.back() != now)
            seen.push_back(now);
    }
    return seen;
}

TEST(Scenario, QuickNightGoesFromAShowerToSafeAndStaysSafe) {
    std::vector<Weather> firstTenMinutes;
    firstTenMinutes.reserve(600);
    for (int second = 0; second < 600; ++second)
        firstTenMinutes.push_back(quickAt(second));
    EXPECT_EQ(sequence(firstTenMinutes, [](const Weather& w) { return w.rainCondition; }),
              (std::vector{3, 2, 1}));
    EXPECT_EQ(sequence(firstTenMinutes, [](const Weather& w) { return int{safeByDefault(w)}; }),
              (std::vector{0, 1}));
    // Twelve cycles of 10 s leave time for a delay of 40 s and a safe verdict after it.
    EXPECT_FALSE(safeByDefault(quickAt(35)));
    EXPECT_TRUE(safeByDefault(quickAt(50)));
    // Only the rain is against it: the rest is calm, clear and dark.
    for (const int second : {0, 20, 40, 300}) {
        const Weather weather = quickAt(second);
        EXPECT_EQ(weather.cloudCondition, 1) << second;
        EXPECT_EQ(weather.brightnessCondition, 1) << second;
        EXPECT_LE(weather.gust, 10) << second;
    }
    EXPECT_FALSE(safeByDefault(quickAt(15 * 60))) << "dawn is very light";
    EXPECT_EQ(quickAt(20 * 60 + 7).rainValue, quickAt(7).rainValue) << "it begins again";
    EXPECT_EQ(quickAt(-60).rainCondition, 3) << "before its start its first moment lasts";
}

TEST(Scenario, NightGoesThroughEveryCondition) {
    struct Case {
        const char* name;
        std::function<int(const Weather&)> level;
        std::vector<int> expected;
    };
    const Case cases[] = {
        {"cloud", [](const Weather& w) { return w.cloudCondition; }, {1, 2, 3, 2, 1}},
        {"rain", [](const Weather& w) { return w.rainCondition; }, {1, 2, 3, 2, 1}},
        {"light", [](const Weather& w) { return w.brightnessCondition; }, {3, 2, 1, 2, 3}},
        {"gusts", [](const Weather& w) { return int{w.gust > 20}; }, {0, 1, 0}},
        {"dew", [](const Weather& w) { return int{w.temperature - w.dewPoint <= 3}; }, {0, 1, 0}},
    };
    for (const Case& each : cases)
        EXPECT_EQ(sequence(night(), each.level), each.expected) << each.name;
    EXPECT_EQ(night().front().skyTemperature, night().back().skyTemperature)
        << "it repeats every day";
}

TEST(Scenario, ValuesGlideWithoutJumps) {
    struct Case {
        const char* name;
        double Weather::*value;
        double step; // the largest in 5 s
    };
    const Case cases[] = {
        {"temperature", &Weather::temperature, 0.1},
        {"wind", &Weather::wind, 0.3},
        {"gust", &Weather::gust, 0.5},
        {"humidity", &Weather::humidity, 0.5},
        {"pressure", &Weather::pressure, 0.1},
        {"sky", &Weather::skyTemperature, 0.3},
        {"rain", &Weather::rainValue, 25},
        {"direction", &Weather::direction, 1},
        {"heater", &Weather::heaterPercent, 1},
    };
    for (const Case& each : cases) {
        double largest = 0;
        for (std::size_t i = 1; i < night().size(); ++i)
            largest =
                std::max(largest, std::abs(night()[i].*each.value - night()[i - 1].*each.value));
        EXPECT_LT(largest, each.step) << each.name;
        EXPECT_GT(largest, 0) << each.name;
    }
}

} // namespace
} // namespace skyhold
