#include "conditions/sector_text.h"

#include "conditions/rules_of.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

// Names the case that fails.
static void PrintTo(const Sector& sector, std::ostream* out) {
    *out << sector.from << " to " << sector.to << ", " << sector.minutes << " min";
}

namespace {

TEST(Sectors, TheEditorKeepsItsRulesAndWritesTheFixedColumns) {
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

// What is no sector restricts nothing.
TEST(Sectors, RulesTakeTheTextsOfTheControls) {
    ConditionControls controls;
    const std::pair<QString, std::optional<Sector>> texts[] = {
        {u" 090  180  05 "_s, Sector{90, 180, 5}},
        {u"-030 030  00"_s, Sector{-30, 30, 0}},
        {QString(), std::nullopt},
        {u"   "_s, std::nullopt},
        {u"unreadable  "_s, std::nullopt},
        {u"090       00"_s, std::nullopt}};
    for (const auto& [text, sector] : texts) {
        controls.Direction[Quantity::Gust][1].Caption = text;
        EXPECT_EQ(rulesOf(controls).levels[Quantity::Gust].sectors[1], sector) << qPrintable(text);
    }
}

} // namespace

} // namespace skyhold
