#include "conditions/sectors.h"

#include "monitor.h"

#include <limits>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

struct Sectors : Monitor {
    bool holds(const QString& text, double direction) {
        return SectorHolds(SectorKind::Wind, text, direction, sectors, clock.MsClock());
    }
};

TEST_F(Sectors, BoundsAreInclusiveAndANegativeStartWrapsThroughNorth) {
    const struct {
        QString text;
        double direction;
        bool inside;
    } rows[] = {
        {u"090  180  00"_s, 90, true},
        {u"090  180  00"_s, 180, true},
        {u"090  180  00"_s, 89.9, false},
        {u"090  180  00"_s, 180.1, false},
        {u"-030 030  00"_s, 350, true},
        {u"-030 030  00"_s, 330, true},
        {u"-030 030  00"_s, 329.9, false},
        {u"-030 030  00"_s, 0, true},
        {u"-030 030  00"_s, 20, true},
        {u"-030 030  00"_s, 30, true},
        {u"-030 030  00"_s, 40, false},
        {u"-359 000  00"_s, 180, true},
        {u"000  000  00"_s, 0, true},
        {u"000  000  00"_s, 22.5, false},
        {u"180  090  00"_s, 120, false},
        {u" 090  180  00 "_s, 120, true},
        // Without a sector, or a direction to test, nothing is restricted.
        {u""_s, 123, true},
        {u"   "_s, 123, true},
        {u"unreadable  "_s, 123, true},
        {u"090       00"_s, 123, true},
        {u"090  180  00"_s, std::numeric_limits<double>::quiet_NaN(), true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << qPrintable(row.text) << " at " << row.direction);
        sectors.WindOutsideSince = 1;
        EXPECT_EQ(holds(row.text, row.direction), row.inside);
        EXPECT_EQ(sectors.WindOutsideSince, row.inside ? 1 : clock.MsClock());
    }
}

TEST_F(Sectors, TheMinutesCountFromTheLastCycleOutsideOrTheSessionStart) {
    sectors.WindOutsideSince = sectors.GustOutsideSince = clock.MsClock();
    EXPECT_FALSE(holds(u"000  359  01"_s, 180));
    clock.advanceMs(59'999);
    EXPECT_FALSE(holds(u"000  359  01"_s, 180));
    clock.advanceMs(1);
    EXPECT_TRUE(holds(u"000  359  01"_s, 180));

    const QString sector = u"090  180  05"_s;
    EXPECT_FALSE(holds(sector, 100));
    clock.advanceSeconds(180);
    EXPECT_FALSE(holds(sector, 100));
    EXPECT_FALSE(holds(sector, 200)); // starts the wait again
    clock.advanceSeconds(299);
    EXPECT_FALSE(holds(sector, 100));
    clock.advanceSeconds(1);
    EXPECT_TRUE(holds(sector, 100));
    // The gust kind has seen nothing of this.
    EXPECT_TRUE(SectorHolds(SectorKind::Gust, u"090  180  09"_s, 100, sectors, clock.MsClock()));
}

TEST_F(Sectors, OnlyTheCurrentLevelIsTested) {
    const std::int64_t before = 1;
    sectors = {before, before};
    readings.WindCondition = WindWindy;
    readings.GustCondition = WindVeryWindy;
    readings.WindDirection = 270;
    for (ThreeLabels* directions : {&controls.DirectionWind, &controls.DirectionGust}) {
        for (Label& direction : *directions)
            direction.Caption = u"090  180  00"_s;
    }
    const std::int64_t now = clock.MsClock();
    for (const std::int32_t other : {-1, 0, 1, 3, 4})
        EXPECT_FALSE(WindLevelHolds(other, readings, controls, sectors, now));
    for (const std::int32_t other : {0, 1, 2})
        EXPECT_FALSE(GustLevelHolds(other, readings, controls, sectors, now));
    EXPECT_EQ(sectors.WindOutsideSince, before);
    EXPECT_EQ(sectors.GustOutsideSince, before);

    EXPECT_FALSE(WindLevelHolds(2, readings, controls, sectors, now));
    EXPECT_EQ(sectors.WindOutsideSince, now);
    EXPECT_EQ(sectors.GustOutsideSince, before);
    EXPECT_FALSE(GustLevelHolds(3, readings, controls, sectors, now));
    EXPECT_EQ(sectors.GustOutsideSince, now);

    // The gust's own sector, tested against the direction of the wind.
    controls.DirectionGust[2].Caption = u"260  280  00"_s;
    EXPECT_TRUE(GustLevelHolds(3, readings, controls, sectors, now));
    readings.WindCondition = WindUnknown;
    EXPECT_FALSE(WindLevelHolds(0, readings, controls, sectors, now));
}

TEST_F(Sectors, TheEditorKeepsItsRulesAndWritesTheFixedColumns) {
    const auto expect = [](const Sector& sector, int from, int to) {
        EXPECT_EQ(sector.from, from);
        EXPECT_EQ(sector.to, to);
    };
    Sector sector = sectorForEditing(u"000  359  01"_s);
    expect(sector, 0, 359);
    EXPECT_EQ(sector.minutes, 1);
    moveSectorFrom(sector, -30); // 359 degrees wide at most
    expect(sector, 0, 359);
    moveSectorTo(sector, 30);
    moveSectorFrom(sector, -30);
    expect(sector, -30, 30);
    moveSectorTo(sector, 350);
    expect(sector, -30, 329);
    moveSectorFrom(sector, 400);
    expect(sector, 329, 329);
    moveSectorTo(sector, 100);
    expect(sector, 329, 329);
    moveSectorTo(sector, 999);
    expect(sector, 329, 359);
    sector = {0, 0, 0};
    moveSectorFrom(sector, -999);
    expect(sector, -359, 0);
    moveSectorTo(sector, -1);
    expect(sector, -359, 0);

    // What OK writes, and that it reads back as the same sector.
    const struct {
        Sector edited;
        QString text;
    } rows[] = {
        {{-30, 30, 5}, u"-030 030  05 "_s},
        {{0, 359, 1}, u"000  359  01 "_s},
        {{-359, 0, 99}, u"-359 000  99 "_s},
        {{120, 120, 7}, u"000  000  07 "_s},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(editedSectorText(row.edited), row.text);
        EXPECT_EQ(editedSectorText(sectorForEditing(row.text)), row.text);
    }
    // Texts that no editor wrote open within the rules.
    expect(sectorForEditing(u"200  100  01"_s), 100, 100);
    expect(sectorForEditing(u"-200 300  01"_s), -59, 300);
    expect(sectorForEditing(u"unreadable"_s), 0, 0);
    expect(sectorForEditing(u""_s), 0, 0);
}

} // namespace

} // namespace skyhold
