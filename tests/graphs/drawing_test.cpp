#include "graphs/direction_graph.h"
#include "graphs/graph_paper.h"
#include "graphs/value_graph.h"
#include "platform/text_forms.h"

#include "pictures.h"

#include <gtest/gtest.h>

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

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
    const struct {
        std::array<double, 3> thresholds;
        int bottom;
        double value;
        int y;
    } cases[] = {
        {{10, 20, 99}, 180, -3, 1},
        {{10, 20, 99}, 180, 0, 1},
        {{10, 20, 99}, 180, 5, 30},
        {{10, 20, 99}, 180, 10, 60},
        {{10, 20, 99}, 180, 15, 90},
        {{10, 20, 99}, 180, 20, 120},
        {{10, 20, 99}, 180, 59.5, 150},
        {{10, 20, 99}, 180, 99, 179},
        {{10, 20, 99}, 180, 1e9, 179},
        {{10, 20, 99}, 190, 10, 63},
        {{10, 20, 99}, 190, 15, 95},
        {{10, 20, 99}, 190, 20, 127},
        {{-5, 50, 99}, 180, -40, 1},
        {{-5, 50, 99}, 180, -10, 1},
        {{-5, 50, 99}, 180, -7.5, 30},
        {{-5, 50, 99}, 180, -5, 60},
        {{-5, 50, 99}, 180, 22.5, 90},
        {{-5, 50, 99}, 180, 50, 120},
        {{0, 10, 20}, 180, 0, 1},
        {{0, 10, 20}, 180, 5, 90},
        {{10, 10, 10}, 180, 5, 30},
        {{10, 10, 10}, 180, 10, 179},
        {{10, 10, 20}, 180, 15, 150},
        {{20, 10, 5}, 180, 15, 45}, // limits out of order: the first band that holds the value
        {{20, 10, 5}, 180, 25, 179},
    };
    for (const auto& c : cases)
        EXPECT_EQ(verticalPosition(c.value, c.thresholds, c.bottom), c.y)
            << c.thresholds[0] << "," << c.thresholds[1] << "," << c.thresholds[2] << ": "
            << c.value << " of " << c.bottom;
}

TEST(ValueGraphPicture, LineOfAThresholdRunsAlongTheBandBorder) {
    // Heights of every remainder by three: border and line are rounded alike.
    for (const int height : {200, 201, 202, 400}) {
        const int bottom = plotBottom({600, height});
        const struct {
            double value;
            Colour above, below;
        } cases[] = {{10, kTop, kMiddle}, {20, kMiddle, kLow}};
        for (const auto& c : cases) {
            Picture picture;
            picture.Size = {600, height};
            const ValueGraph graph = steadyGraph(c.value);
            DrawValueGraph(graph, picture);
            const int y = verticalPosition(c.value, graph.thresholds, bottom);
            for (const int x : {0, 300, 598}) {
                EXPECT_EQ(pixel(picture, x, y - 2), rgb(c.above)) << height;
                EXPECT_EQ(pixel(picture, x, y - 1), rgb(kLine)) << height;
                EXPECT_EQ(pixel(picture, x, y), rgb(kLine)) << height;
                EXPECT_EQ(pixel(picture, x, y + 1), rgb(c.below)) << height;
            }
        }
    }
}

TEST(ValueGraphPicture, ValuesBeyondTheScaleLieOneUnitInside) {
    const int bottom = plotBottom({600, 200});
    Picture picture;
    DrawValueGraph(steadyGraph(99), picture);
    EXPECT_EQ(pixel(picture, 20, bottom - 1), rgb(kLine));
    EXPECT_EQ(pixel(picture, 20, bottom - 3), rgb(kLow));
    EXPECT_EQ(pixel(picture, 20, bottom), kWhite);
    DrawValueGraph(steadyGraph(-2), picture);
    EXPECT_EQ(pixel(picture, 20, 1), rgb(kLine));
    EXPECT_EQ(pixel(picture, 20, 3), rgb(kTop));
}

TEST(ValueGraphPicture, FillsFromTheLeftThroughEveryPoint) {
    ValueGraph graph = steadyGraph(10);
    graph.series = steady(10, 31, 60, 7200);
    graph.series.points[10].value = 20; // at 600 s: x 50
    Picture picture;
    DrawValueGraph(graph, picture);
    const int bottom = plotBottom(picture.Size);
    const int calm = verticalPosition(10, graph.thresholds, bottom);
    const int windy = verticalPosition(20, graph.thresholds, bottom);
    EXPECT_EQ(pixel(picture, 0, calm), rgb(kLine));
    EXPECT_EQ(pixel(picture, 50, windy - 1), rgb(kLine));
    EXPECT_EQ(pixel(picture, 149, calm), rgb(kLine));
    EXPECT_EQ(ink(picture, {152, calm + 1, 448, windy - calm - 2}, rgb(kMiddle)), 0);
}

TEST(ValueGraphPicture, ManyPointsOfAColumnAreAllShown) {
    ValueGraph graph = steadyGraph(10);
    graph.series = steady(10, 2000, 10, 20'000);
    for (std::size_t i = 1; i < 2000; i += 5)
        graph.series.points[i].value = 20; // in two columns of three
    Picture picture;
    DrawValueGraph(graph, picture);
    const int bottom = plotBottom(picture.Size);
    const int calm = verticalPosition(10, graph.thresholds, bottom);
    const int windy = verticalPosition(20, graph.thresholds, bottom);
    const TimeAxis axis = timeAxis(graph.series, 600);
    for (const TimedValue& point : graph.series.points) {
        const int x = axis.position(point.time);
        EXPECT_EQ(pixel(picture, x, point.value > 15 ? windy : calm), rgb(kLine)) << x;
    }
    // No gap on the way from the one to the other.
    for (int y = calm; y < windy; ++y)
        EXPECT_GT(ink(picture, {0, y, 600, 1}, rgb(kMiddle)), 500) << y;
}

TEST(ValueGraphPicture, WithoutPointsShowsTheBandsAlone) {
    ValueGraph graph = steadyGraph(10);
    graph.series.points.clear();
    Picture picture;
    DrawValueGraph(graph, picture);
    const int bottom = plotBottom(picture.Size);
    EXPECT_EQ(ink(picture, {0, 0, 500, bottom / 3}, rgb(kTop)), 0);
    EXPECT_EQ(ink(picture, {0, bottom, 600, 200 - bottom}, kWhite), 0);
}

TEST(ValueGraphPicture, CaptionsAreCentredInThirdsOfThePicture) {
    ValueGraph graph = steadyGraph(10);
    graph.series.points.clear();
    graph.bands[1].caption = u"Windy"_s;
    Picture picture;
    DrawValueGraph(graph, picture);
    const int bottom = plotBottom(picture.Size);
    const QRect band(0, (bottom + 2) / 3 + 1, 600, bottom / 3 - 2);
    const QRect caption = inkBounds(picture, band, rgb(kMiddle));
    EXPECT_NEAR(caption.center().x(), 300, 3);
    EXPECT_NEAR(caption.center().y(), 100, 4);
    EXPECT_GE(caption.height(), 13); // 14 points: capitals of some 14 pixels
    EXPECT_LE(caption.height(), 19);
}

// Which of the eleven ticks have a label under them.
QString labelled(int width, double spanSeconds) {
    ValueGraph graph = steadyGraph(10);
    graph.series = steady(10, 2, 60, spanSeconds);
    Picture picture;
    picture.Size = {width, 200};
    DrawValueGraph(graph, picture);
    const int bottom = plotBottom(picture.Size);
    QString found;
    for (const TimeTick& tick : timeTicks(timeAxis(graph.series, width))) {
        EXPECT_EQ(pixel(picture, tick.x, bottom - 4), qRgb(0, 0, 0));
        EXPECT_EQ(pixel(picture, tick.x, bottom - 1), qRgb(0, 0, 0));
        EXPECT_EQ(pixel(picture, tick.x, bottom - 5), rgb(kLow));
        // The middle of a label is its colon or a digit beside it.
        const bool text = ink(picture, {tick.x - 4, bottom, 9, 200 - bottom}, kWhite) > 0;
        found += text ? u'x' : u'.';
    }
    return found;
}

TEST(ValueGraphPicture, LabelsKeepADistance) {
    EXPECT_EQ(labelled(600, 6 * 3600), u"xxxxxxxxxxx"_s);
    EXPECT_EQ(labelled(480, 3600), u"x.x.x.x.x.x"_s); // the labels with seconds are wider
    EXPECT_EQ(labelled(360, 6 * 3600), u"x.x.x.x.x.x"_s);
}

TEST(ValueGraphPicture, MarkerStandsInTheUpperRightCorner) {
    Picture picture;
    ValueGraph graph = steadyGraph(99);
    DrawValueGraph(graph, picture);
    const QRect marker = inkBounds(picture, {300, 0, 300, 40}, rgb(kTop));
    EXPECT_GT(marker.left(), 500);
    EXPECT_LT(marker.bottom(), 20);
    EXPECT_GE(marker.top(), 1);
    EXPECT_GE(599 - marker.right(), 2); // its trailing blank
    EXPECT_LE(599 - marker.right(), 8);
}

TEST(ValueGraphPicture, FollowsSizeAndPixelRatio) {
    Picture picture;
    DrawValueGraph(steadyGraph(10), picture);
    EXPECT_EQ(picture.Image.size(), QSize(600, 200));
    EXPECT_EQ(picture.Drawings, 1);

    picture.PixelRatio = 2;
    EXPECT_FALSE(picture.fits());
    DrawValueGraph(steadyGraph(10), picture);
    EXPECT_EQ(picture.Image.size(), QSize(1200, 400));
    EXPECT_EQ(picture.Drawings, 2);
    EXPECT_TRUE(picture.fits());
    const int y = 2 * verticalPosition(10, {10, 20, 99}, plotBottom(picture.Size));
    for (int row = y - 2; row < y + 2; ++row)
        EXPECT_EQ(pixel(picture, 0, row), rgb(kLine));
    EXPECT_EQ(pixel(picture, 0, y - 3), rgb(kTop));
    EXPECT_EQ(pixel(picture, 0, y + 2), rgb(kMiddle));

    picture.Size = {}; // a view that is not laid out yet
    DrawValueGraph(steadyGraph(10), picture);
    EXPECT_FALSE(picture.Image.isNull());
    EXPECT_TRUE(picture.fits());
}

TEST(DirectionPosition, GrowsDownwardsInsideTheEdges) {
    const struct {
        double degrees;
        int y;
    } cases[] = {{0, 1}, {45, 24}, {90, 48}, {180, 95}, {225, 119}, {359.9, 189}, {360, 189}};
    for (const auto& c : cases)
        EXPECT_EQ(directionPosition(c.degrees, 190), c.y) << c.degrees;
}

class DirectionPicture : public testing::Test {
  protected:
    DirectionPicture() {
        graph.series = steady(200, 13, 600, 7200); // one point every 50 pixels
        graph.textColour = kInk;
        graph.pointColour = kRed;
        graph.gridColour = kGrid;
        graph.series.points[6].value = 100;
        DrawDirectionGraph(graph, picture);
    }

    DirectionGraph graph;
    Picture picture;
    const int bottom = plotBottom(picture.Size);
};

TEST_F(DirectionPicture, PointsAreSingleDots) {
    const int y = directionPosition(200, bottom);
    EXPECT_EQ(pixel(picture, 0, y), rgb(kRed));
    EXPECT_EQ(pixel(picture, 150, y), rgb(kRed));
    EXPECT_NE(pixel(picture, 300, y), rgb(kRed));
    EXPECT_EQ(pixel(picture, 300, directionPosition(100, bottom)), rgb(kRed));
    const QRgb ground = pixel(picture, 175, y);
    EXPECT_EQ(ink(picture, {154, y - 3, 42, 7}, ground), 0); // nothing between two dots
}

TEST_F(DirectionPicture, GridHasNineLabelledBorders) {
    const QRgb ground = pixel(picture, 425, bottom / 16);
    for (int border = 0; border <= 8; ++border) {
        const int y = std::min(static_cast<int>(roundHalfEven(bottom * border / 8.0)), bottom - 1);
        EXPECT_EQ(pixel(picture, 425, y), rgb(kGrid)) << border;
        EXPECT_EQ(pixel(picture, 1, y), rgb(kGrid)) << border;
        EXPECT_EQ(pixel(picture, 598, y), rgb(kGrid)) << border;
        EXPECT_EQ(pixel(picture, 599, y), ground) << border;
        const int top = std::clamp(y - 4, 2, bottom - 10);
        EXPECT_GT(ink(picture, {7, top, 20, 8}, ground), 20) << border;
    }
    EXPECT_EQ(ink(picture, {60, bottom / 8 + 2, 30, bottom / 8 - 4}, ground), 0);
}

} // namespace
} // namespace skyhold
