// SPDX-License-Identifier: GPL-3.0-or-later
#include "graphs/direction_graph.h"
#include "graphs/graph_paper.h"
#include "graphs/time_axis.h"
#include "graphs/value_graph.h"
#include "pictures.h"
#include "platform/text_forms.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {
namespace {

constexpr Colour kTop = 0x00C0FF;
constexpr Colour kMiddle = 0xFFC000;
constexpr Colour kLow = 0x80FF80;
constexpr Colour kInk = 0x404040;
constexpr Colour kLine = 0xC00000;
constexpr Colour kGrid = 0x00FF00;
const QRgb kWhite = qRgb(255, 255, 255);

// Two hours of one value; no captions.
ValueGraph steadyGraph(double value) {
    return {.series = steady(value, 121, 60, 7200),
            .bands = {{{{}, kTop}, {{}, kMiddle}, {{}, kLow}}},
            .thresholds = {10, 20, 99},
            .textColour = kInk,
            .lineColour = kLine};
}

TEST(VerticalPosition, EveryBandHasAThird) {
    using Places = std::vector<std::pair<double, int>>;
    const struct {
        std::array<double, 3> thresholds;
        int bottom;
        Places places; // of values
    } cases[] = {
        {{10, 20, 99}, 180, {{-3, 1}, {0, 1}, {5, 30}, {10, 60}, {15, 90}, {20, 120}}},
        {{10, 20, 99}, 180, {{59.5, 150}, {99, 179}, {1e9, 179}}},
        {{-5, 50, 99}, 180, {{-40, 1}, {-10, 1}, {-7.5, 30}, {-5, 60}, {22.5, 90}, {50, 120}}},
        {{10, 10, 10}, 180, {{5, 30}, {10, 179}}},
        {{20, 10, 5}, 180, {{15, 45}, {25, 179}}}, // out of order: the first band that holds it
    };
    for (const auto& c : cases) {
        for (const auto& [value, y] : c.places)
            EXPECT_EQ(verticalPosition(value, c.thresholds, c.bottom), y)
                << c.thresholds[0] << "," << c.thresholds[1] << ": " << value;
    }
}

using Letters = std::vector<std::pair<QRgb, QChar>>;

// The plot area as text, from the top: a letter for every twentieth of its width and twelfth of its
// height, the first of the letters whose colour occurs there.
QStringList sketch(const Picture& picture, const Letters& letters) {
    const int bottom = plotBottom(picture.Size);
    const int width = picture.Size.width();
    QStringList rows;
    for (int row = 0; row < 12; ++row) {
        QString text;
        for (int column = 0; column < 30; ++column) {
            const QRect cell(QPoint(width * column / 30, bottom * row / 12),
                             QPoint(width * (column + 1) / 30 - 1, bottom * (row + 1) / 12 - 1));
            const auto found = std::ranges::find_if(
                letters, [&](const auto& letter) { return holds(picture, cell, letter.first); });
            text += found == letters.end() ? QChar(u'?') : found->second;
        }
        rows.append(text);
    }
    return rows;
}

// From below the first limit to beyond the last, then a missing value; thousands of points up and
// down between two limits in a few columns; nothing yet in the last quarter.
TEST(ValueGraphPicture, LineRunsThroughItsBands) {
    ValueGraph graph = steadyGraph(0);
    std::vector<TimedValue>& points = graph.series.points;
    points.clear();
    const auto add = [&points](double second, double value) {
        points.push_back({kNight + second * kSecond, value});
    };
    for (const auto& [minute, value] : {std::pair{0, -3.0},
                                        {10, 5.0},
                                        {20, 10.0},
                                        {30, 20.0},
                                        {40, 59.5},
                                        {50, 120.0},
                                        {55, std::nan("")},
                                        {60, 20.0}})
        add(minute * 60, value);
    for (int i = 0; i < 1800; ++i)
        add(3600 + i, i % 10 == 0 ? 19 : 11);
    Picture picture;
    DrawValueGraph(graph, picture);
    const Letters letters{
        {rgb(kLine), u'#'}, {rgb(kTop), u'1'}, {rgb(kMiddle), u'2'}, {rgb(kLow), u'3'}};
    EXPECT_EQ(sketch(picture, letters).join(u'\n').toStdString(), "##1111111111111111111111111111\n"
                                                                  "1##111111111111111111111111111\n"
                                                                  "11##11111111111111111111111111\n"
                                                                  "111###111111111111111111111111\n"
                                                                  "2222##22222222#########2222222\n"
                                                                  "22222##2222222#########2222222\n"
                                                                  "222222#2222222#########2222222\n"
                                                                  "222222##222222#########2222222\n"
                                                                  "2222222##22222##22222222222222\n"
                                                                  "33333333###3333333333333333333\n"
                                                                  "333333333###333333333333333333\n"
                                                                  "33333333333##33333333333333333");
    EXPECT_TRUE(GraphSeries(graph.series) == graph.series); // not drawn anew for a missing value
}

TEST(DirectionPicture, PointsAreDotsOnALabelledGrid) {
    DirectionGraph graph{.series = steady(200, 13, 600, 7200), // one point every 50 pixels
                         .textColour = kInk,
                         .pointColour = kRed,
                         .gridColour = kGrid};
    graph.series.points[6].value = 100;
    graph.series.points[9].value = std::nan("");
    Picture picture;
    DrawDirectionGraph(graph, picture);
    const Letters letters{{rgb(kRed), u'o'}, {rgb(kGrid), u'-'}, {pixel(picture, 425, 12), u'.'}};
    EXPECT_EQ(sketch(picture, letters).join(u'\n').toStdString(), "------------------------------\n"
                                                                  "------------------------------\n"
                                                                  "..............................\n"
                                                                  "---------------o--------------\n"
                                                                  "------------------------------\n"
                                                                  "..............................\n"
                                                                  "o-o--o-o--o-o----o--o----o-o--\n"
                                                                  "------------------------------\n"
                                                                  "..............................\n"
                                                                  "------------------------------\n"
                                                                  "------------------------------\n"
                                                                  "------------------------------");
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
