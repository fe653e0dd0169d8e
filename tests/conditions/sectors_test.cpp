#include "conditions/sectors.h"

#include "monitor.h"

namespace skyhold {

// Names the case that fails.
static void PrintTo(const Sector& sector, std::ostream* out) {
    *out << sector.from << " to " << sector.to << ", " << sector.minutes << " min";
}

static bool operator==(const Sector& a, const Sector& b) {
    return a.from == b.from && a.to == b.to && a.minutes == b.minutes;
}

namespace {

struct Sectors : Monitor {
    bool holds(const QString& text, std::optional<double> direction) {
        return SectorHolds(SectorKind::Wind, text, direction, sectors, clock.MsClock());
    }
};

TEST_F(Sectors, BoundsAreInclusiveAndANegativeStartWrapsThroughNorth) {
    const struct {
        QString text;
        std::vector<double> inside, outside;
    } rows[] = {
        {u"090  180  00"_s, {90, 180}, {89.9, 180.1}},
        {u"-030 030  00"_s, {350, 330, 0, 20, 30}, {329.9, 40}},
        {u"-359 000  00"_s, {180}, {}},
        {u"000  000  00"_s, {0}, {22.5}},
        {u"180  090  00"_s, {}, {120}},
        {u" 090  180  00 "_s, {120}, {}},
        // Without a sector nothing is restricted.
        {u""_s, {123}, {}},
        {u"   "_s, {123}, {}},
        {u"unreadable  "_s, {123}, {}},
        {u"090       00"_s, {123}, {}},
        {u"090  180  00"_s, {kNan}, {}},
    };
    const auto expect = [this](const QString& text, double direction, bool inside) {
        SCOPED_TRACE(testing::Message() << qPrintable(text) << " at " << direction);
        sectors.WindOutsideSince = 1;
        EXPECT_EQ(holds(text, direction), inside);
        EXPECT_EQ(sectors.WindOutsideSince, inside ? 1 : clock.MsClock());
    };
    for (const auto& [text, inside, outside] : rows) {
        for (const double direction : inside)
            expect(text, direction, true);
        for (const double direction : outside)
            expect(text, direction, false);
    }
}

TEST_F(Sectors, TheMinutesCountFromTheLastCycleOutsideOrTheSessionStart) {
    sectors.WindOutsideSince = sectors.GustOutsideSince = clock.MsClock();
    const QString everywhere = u"000  359  01"_s;
    const QString sector = u"090  180  05"_s;
    const struct {
        std::int64_t ms; // the clock before the test
        QString text;
        double direction;
        bool held;
    } steps[] = {
        {0, everywhere, 180, false},   {59'999, everywhere, 180, false}, {1, everywhere, 180, true},
        {0, sector, 100, false},       {180'000, sector, 100, false},    {0, sector, 200, false},
        {299'000, sector, 100, false}, // the wait has begun again
        {1000, sector, 100, true},
    };
    for (const auto& step : steps) {
        clock.advanceMs(step.ms);
        EXPECT_EQ(holds(step.text, step.direction), step.held) << step.ms << step.direction;
    }
    // A direction that is not known counts as inside: it may be.
    const std::int64_t outside = sectors.WindOutsideSince;
    EXPECT_TRUE(holds(sector, std::nullopt));
    sectors.WindOutsideSince = clock.MsClock();
    EXPECT_FALSE(holds(sector, std::nullopt));
    sectors.WindOutsideSince = outside;
    // The gust kind has seen nothing of this.
    EXPECT_TRUE(SectorHolds(SectorKind::Gust, u"090  180  09"_s, 100, sectors, clock.MsClock()));
}

TEST_F(Sectors, OnlyTheCurrentLevelIsTested) {
    const std::int64_t before = 1;
    sectors = {before, before};
    readings.Condition[Quantity::Wind] = WindWindy;
    readings.Condition[Quantity::Gust] = WindVeryWindy;
    readings.WindDirection = 270;
    setDirections(u"090  180  00"_s);
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
    controls.Direction[Quantity::Gust][2].Caption = u"260  280  00"_s;
    EXPECT_TRUE(GustLevelHolds(3, readings, controls, sectors, now));
    readings.Condition[Quantity::Wind] = WindUnknown;
    EXPECT_FALSE(WindLevelHolds(0, readings, controls, sectors, now));
}

TEST_F(Sectors, TheEditorKeepsItsRulesAndWritesTheFixedColumns) {
    // 359 degrees wide at most, an end from 0 to 359 that no start passes.
    const struct {
        Sector sector;
        void (*move)(Sector&, int);
        int to;
        Sector moved;
    } moves[] = {
        {{0, 359, 1}, moveSectorFrom, -30, {0, 359, 1}},
        {{0, 30, 1}, moveSectorFrom, -30, {-30, 30, 1}},
        {{-30, 30, 1}, moveSectorTo, 350, {-30, 329, 1}},
        {{-30, 329, 1}, moveSectorFrom, 400, {329, 329, 1}},
        {{329, 329, 1}, moveSectorTo, 100, {329, 329, 1}},
        {{329, 329, 1}, moveSectorTo, 999, {329, 359, 1}},
        {{0, 0, 0}, moveSectorFrom, -999, {-359, 0, 0}},
        {{-359, 0, 0}, moveSectorTo, -1, {-359, 0, 0}},
    };
    for (const auto& row : moves) {
        Sector sector = row.sector;
        row.move(sector, row.to);
        EXPECT_EQ(sector, row.moved);
    }
    // What OK writes, and that it reads back as the same sector.
    const std::pair<Sector, QString> written[] = {{{-30, 30, 5}, u"-030 030  05 "_s},
                                                  {{0, 359, 1}, u"000  359  01 "_s},
                                                  {{-359, 0, 99}, u"-359 000  99 "_s},
                                                  {{120, 120, 7}, u"000  000  07 "_s}};
    for (const auto& [edited, text] : written) {
        EXPECT_EQ(editedSectorText(edited), text);
        EXPECT_EQ(editedSectorText(sectorForEditing(text)), text);
    }
    // Texts that no editor wrote open within the rules.
    EXPECT_EQ(sectorForEditing(u"200  100  01"_s), (Sector{100, 100, 1}));
    EXPECT_EQ(sectorForEditing(u"-200 300  01"_s), (Sector{-59, 300, 1}));
    for (const QString& text : {u"unreadable"_s, QString()})
        EXPECT_EQ(sectorForEditing(text), Sector{});
}

} // namespace

} // namespace skyhold
