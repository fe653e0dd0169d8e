#include "conditions/sector_text.h"

#include "conditions/rules_of.h"
#include "model/compass.h"

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
    EXPECT_EQ(sectorBetween(200, 30, 2), (Sector{-160, 30, 2}));
    EXPECT_EQ(sectorBetween(30, 200, 2), (Sector{30, 200, 2}));
    // Texts that no editor wrote open within the rules.
    EXPECT_EQ(sectorForEditing(u"200  100  01"_s), (Sector{100, 100, 1}));
    EXPECT_EQ(sectorForEditing(u"-200 300  01"_s), (Sector{-59, 300, 1}));
    for (const QString& text : {u"unreadable"_s, QString()})
        EXPECT_EQ(sectorForEditing(text), Sector{});
}

TEST(Sectors, WordsSayWhatTheTextMeans) {
    std::array<QString, 16> labels;
    for (std::size_t i = 0; i < labels.size(); ++i)
        labels[i] = QString::fromLatin1(kCompassPoints[i]);
    labels[8] = u"Sud"_s;
    const std::pair<QString, QString> rows[] = {
        {u"000  359  01"_s, u"all directions, after 1 min"_s},
        {u"-359 000  00"_s, u"all directions, at once"_s},
        {u"225  315  02"_s, u"SW to NW, after 2 min"_s},
        {u"-030 030  00"_s, u"330° to 30°, at once"_s},
        {u"-022 178  10"_s, u"NNW to 178°, after 10 min"_s},
        {u"090  180  05"_s, u"E to Sud, after 5 min"_s},
        {u"000  000  01"_s, u"only N, after 1 min"_s},
        {u"300  100  01"_s, u"no direction"_s},
        {u"100  999  01"_s, u"100° to N, after 1 min"_s}, // ends at 359
        {QString(), u"all directions, at once"_s},
        {u"unreadable"_s, u"all directions, at once"_s}};
    for (const auto& [text, words] : rows)
        EXPECT_EQ(sectorWords(text, labels), words) << qPrintable(text);
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
