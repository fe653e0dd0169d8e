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
    using Places = std::vector<std::pair<double, int>>;
    const struct {
        std::array<double, 3> thresholds;
        int bottom;
        Places places; // of values
    } cases[] = {
        {{10, 20, 99}, 180, {{-3, 1}, {0, 1}, {5, 30}, {10, 60}, {15, 90}, {20, 120}}},
        {{10, 20, 99}, 180, {{59.5, 150}, {99, 179}, {1e9, 179}}},
        {{10, 20, 99}, 190, {{10, 63}, {15, 95}, {20, 127}}},
        {{-5, 50, 99}, 180, {{-40, 1}, {-10, 1}, {-7.5, 30}, {-5, 60}, {22.5, 90}, {50, 120}}},
        {{0, 10, 20}, 180, {{0, 1}, {5, 90}}},
        {{10, 10, 10}, 180, {{5, 30}, {10, 179}}},
        {{10, 10, 20}, 180, {{15, 150}}},
        {{20, 10, 5}, 180, {{15, 45}, {25, 179}}}, // out of order: the first band that holds it
    };
    for (const auto& c : cases) {
        for (const auto& [value, y] : c.places)
            EXPECT_EQ(verticalPosition(value, c.thresholds, c.bottom), y)
                << c.thresholds[0] << "," << c.thresholds[1] << ": " << value;
    }
}

// One of them drawn.
struct Drawn {
    explicit Drawn(const ValueGraph& graph, const QSize& size = {600, 200})
        : bottom(plotBottom(size)) {
        picture.Size = size;
        DrawValueGraph(graph, picture);
    }
    QRgb at(int x, int y) const { return pixel(picture, x, y); }
    int inkIn(const QRect& rectangle, QRgb ground) const { return ink(picture, rectangle, ground); }

    Picture picture;
    static constexpr std::array<double, 3> thresholds{10, 20, 99};
    const int bottom;
    const int calm = verticalPosition(10, thresholds, bottom);
    const int windy = verticalPosition(20, thresholds, bottom);
};

TEST(ValueGraphPicture, LineOfAThresholdRunsAlongTheBandBorder) {
    // Heights of every remainder by three: border and line are rounded alike.
    for (const int height : {200, 201, 202, 400}) {
        for (const double value : {10, 20}) {
            const Drawn drawn(steadyGraph(value), {600, height});
            const int y = value == 10 ? drawn.calm : drawn.windy;
            for (const int x : {0, 300, 598}) {
                EXPECT_EQ(drawn.at(x, y - 2), rgb(value == 10 ? kTop : kMiddle)) << height;
                EXPECT_EQ(drawn.at(x, y - 1), rgb(kLine)) << height;
                EXPECT_EQ(drawn.at(x, y), rgb(kLine)) << height;
                EXPECT_EQ(drawn.at(x, y + 1), rgb(value == 10 ? kMiddle : kLow)) << height;
            }
        }
    }
}

TEST(ValueGraphPicture, ValuesBeyondTheScaleLieOneUnitInside) {
    const Drawn high(steadyGraph(99));
    EXPECT_EQ(high.at(20, high.bottom - 1), rgb(kLine));
    EXPECT_EQ(high.at(20, high.bottom - 3), rgb(kLow));
    EXPECT_EQ(high.at(20, high.bottom), kWhite);
    const Drawn low(steadyGraph(-2));
    EXPECT_EQ(low.at(20, 1), rgb(kLine));
    EXPECT_EQ(low.at(20, 3), rgb(kTop));
}

TEST(ValueGraphPicture, FillsFromTheLeftThroughEveryPoint) {
    ValueGraph graph = steadyGraph(10);
    graph.series = steady(10, 31, 60, 7200);
    graph.series.points[10].value = 20; // at 600 s: x 50
    const Drawn drawn(graph);
    EXPECT_EQ(drawn.at(0, drawn.calm), rgb(kLine));
    EXPECT_EQ(drawn.at(50, drawn.windy - 1), rgb(kLine));
    EXPECT_EQ(drawn.at(149, drawn.calm), rgb(kLine));
    EXPECT_EQ(drawn.inkIn({152, drawn.calm + 1, 448, drawn.windy - drawn.calm - 2}, rgb(kMiddle)),
              0);
    // No line leads across a missing value.
    graph.series.points[20].value = std::nan("");
    const Drawn parted(graph);
    EXPECT_EQ(parted.at(100, parted.calm), rgb(kMiddle));
    EXPECT_EQ(parted.at(94, parted.calm), rgb(kLine));
    EXPECT_EQ(parted.at(106, parted.calm), rgb(kLine));
    EXPECT_TRUE(GraphSeries(graph.series) == graph.series); // not drawn anew for it
}

TEST(ValueGraphPicture, ManyPointsOfAColumnAreAllShown) {
    ValueGraph graph = steadyGraph(10);
    graph.series = steady(10, 2000, 10, 20'000);
    for (std::size_t i = 1; i < 2000; i += 5)
        graph.series.points[i].value = 20; // in two columns of three
    const Drawn drawn(graph);
    const TimeAxis axis = timeAxis(graph.series, 600);
    for (const TimedValue& point : graph.series.points) {
        const int x = axis.position(point.time);
        EXPECT_EQ(drawn.at(x, point.value > 15 ? drawn.windy : drawn.calm), rgb(kLine)) << x;
    }
    // No gap on the way from the one to the other.
    for (int y = drawn.calm; y < drawn.windy; ++y)
        EXPECT_GT(drawn.inkIn({0, y, 600, 1}, rgb(kMiddle)), 500) << y;
}

TEST(ValueGraphPicture, WithoutPointsShowsTheBandsAndTheirCentredCaptions) {
    ValueGraph graph = steadyGraph(10);
    graph.series.points.clear();
    graph.bands[1].caption = u"Windy"_s;
    const Drawn drawn(graph);
    const int bottom = drawn.bottom;
    EXPECT_EQ(drawn.inkIn({0, 0, 500, bottom / 3}, rgb(kTop)), 0);
    EXPECT_EQ(drawn.inkIn({0, bottom, 600, 200 - bottom}, kWhite), 0);
    // In the thirds of the picture.
    const QRect band(0, (bottom + 2) / 3 + 1, 600, bottom / 3 - 2);
    const QRect caption = inkBounds(drawn.picture, band, rgb(kMiddle));
    EXPECT_NEAR(caption.center().x(), 300, 3);
    EXPECT_NEAR(caption.center().y(), 100, 4);
    EXPECT_GE(caption.height(), 13); // 14 points: capitals of some 14 pixels
    EXPECT_LE(caption.height(), 19);
}

// Which of the eleven ticks have a label under them.
QString labelled(int width, double spanSeconds) {
    ValueGraph graph = steadyGraph(10);
    graph.series = steady(10, 2, 60, spanSeconds);
    const Drawn drawn(graph, {width, 200});
    const int bottom = drawn.bottom;
    QString found;
    for (const TimeTick& tick : timeTicks(timeAxis(graph.series, width))) {
        EXPECT_EQ(drawn.at(tick.x, bottom - 4), qRgb(0, 0, 0));
        EXPECT_EQ(drawn.at(tick.x, bottom - 1), qRgb(0, 0, 0));
        EXPECT_EQ(drawn.at(tick.x, bottom - 5), rgb(kLow));
        // The middle of a label is its colon or a digit beside it.
        const bool text = drawn.inkIn({tick.x - 4, bottom, 9, 200 - bottom}, kWhite) > 0;
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
    const Drawn drawn(steadyGraph(99));
    const QRect marker = inkBounds(drawn.picture, {300, 0, 300, 40}, rgb(kTop));
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
        graph.series.points[9].value = std::nan("");
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
    EXPECT_NE(pixel(picture, 450, y), rgb(kRed)); // missing
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
