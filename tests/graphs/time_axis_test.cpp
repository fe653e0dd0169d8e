#include "graphs/time_axis.h"

#include "pictures.h"

#include <gtest/gtest.h>

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

TEST(TimeAxis, CoversTheSpanAtLeast) {
    const struct {
        const char* name;
        double historySeconds, spanSeconds;
        double time; // seconds after the oldest point
        int x;
    } cases[] = {
        {"a quarter is filled", 1800, 7200, 1800, 150},
        {"the newest point of a longer history is at the right edge", 9000, 7200, 9000, 600},
        {"half of a longer history", 9000, 7200, 4500, 300},
        {"a third of a pixel does not count", 7200, 7200, 16, 1},
        {"the oldest point", 7200, 7200, 0, 0},
        {"no span is known", 600, 0, 300, 300},
        {"one moment and no span", 0, 0, 0, 0},
    };
    for (const auto& c : cases) {
        const GraphSeries series = steady(1, 2, c.historySeconds, c.spanSeconds);
        const TimeAxis axis = timeAxis(series, 600);
        EXPECT_EQ(axis.position(kNight + c.time * kSecond), c.x) << c.name;
    }
    EXPECT_EQ(timeAxis({}, 600).position(kNight), 0);
}

TEST(TimeAxis, TimesOutsideStayDrawable) {
    const TimeAxis axis = timeAxis(steady(1, 2, 7200, 7200), 600);
    EXPECT_GE(axis.position(0), -6010);
    EXPECT_LE(axis.position(1e9), 6010);
}

TEST(TimeAxis, TicksAreTwelfthsAndShortStepsShowSeconds) {
    const struct {
        double startSeconds, spanSeconds;
        QString first, last;
    } cases[] = {
        {22 * 3600, 3600, u"22:05:00"_s, u"22:55:00"_s},
        {22 * 3600, 7188, u"22:09:59"_s, u"23:49:49"_s},
        {22 * 3600, 7200, u"22:10"_s, u"23:50"_s}, // ten minutes are not shorter than ten minutes
        {20 * 3600, 6 * 3600, u"20:30"_s, u"01:30"_s},
        {0.0004, 21600, u"00:30"_s, u"05:30"_s},
        {86'399.9, 3600, u"00:05:00"_s, u"00:55:00"_s},
    };
    for (const auto& c : cases) {
        GraphSeries series{.points = {}, .spanSeconds = c.spanSeconds};
        series.points = {{kNight + c.startSeconds * kSecond, 0}};
        const std::vector<TimeTick> ticks = timeTicks(timeAxis(series, 600));
        ASSERT_EQ(ticks.size(), 11u) << c.spanSeconds;
        for (int k = 1; k <= 11; ++k)
            EXPECT_EQ(ticks[static_cast<std::size_t>(k - 1)].x, 50 * k) << c.spanSeconds;
        EXPECT_EQ(ticks.front().label, c.first);
        EXPECT_EQ(ticks.back().label, c.last);
    }
    EXPECT_TRUE(timeTicks(timeAxis({}, 600)).empty());
    EXPECT_TRUE(timeTicks(timeAxis(steady(1, 2, 0, 0), 600)).empty());
}

} // namespace
} // namespace skyhold
