// SPDX-License-Identifier: GPL-3.0-or-later
#include "conditions/rules_of.h"
#include "conditions/sector_text.h"
#include "conditions/threshold_rules.h"
#include "model/compass.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {
namespace {

TEST(ThresholdRules, AnEntryMustKeepTheOrder) {
    using enum Quantity;
    const std::array<QString, 3> names{u"Calm"_s, u"breezy"_s, u"Very Windy"_s};
    const std::string greater = "CALM value CANNOT be greater or equal than BREEZY value";
    const std::string smaller = "BREEZY value CANNOT be smaller or equal than CALM value";
    const struct {
        Quantity quantity;
        std::array<double, 3> limits;
        std::size_t index; // the entry that is left
        std::string message;
    } cases[]{
        {Wind, {10, 20, 99}, 0, ""},
        {Wind, {20, 20, 99}, 0, greater},
        {Wind, {100, 120, 99}, 0, ""}, // entry 0 against entry 1 only
        {Wind, {10, 10, 99}, 1, smaller},
        {Wind, {10, 99, 99}, 1, "BREEZY value CANNOT be larger or equal than VERY WINDY value"},
        {Wind, {10, 5, 3}, 1, smaller}, // one message
        {Gust, {10, 20, 15}, 2, "VERY WINDY value CANNOT be smaller or equal than BREEZY value"},
        {Dew, {10, 20, 10}, 2, "VERY WINDY value CANNOT be smaller or equal than CALM value"},
        {Temperature, {-5, -5, 30}, 1, smaller},
        {Humidity, {80, 90, 100}, 2, ""},
        {Humidity, {80, 90, 101}, 2, "VERY WINDY value CANNOT be greater than 100"},
        {Humidity, {101, 90, 99}, 0, "CALM value CANNOT be greater than 100"},
        {Wind, {80, 90, 101}, 2, ""},
    };
    for (const auto& [quantity, limits, index, message] : cases)
        EXPECT_EQ(ValidateLimit(quantity, index, {limits, names}).toStdString(), message);
}

TEST(ThresholdRules, LimitsFromElsewhereMayBeOutOfOrder) {
    const std::pair<std::array<double, 3>, bool> rows[] = {{{10, 20, 99}, true},
                                                           {{20, 10, 99}, false},
                                                           {{10, 10, 99}, false},
                                                           {{10, 99, 20}, false},
                                                           {{10, qQNaN(), 99}, false}};
    for (const auto& [values, ordered] : rows) {
        ThreeBoxes limits;
        for (std::size_t i = 0; i < limits.size(); ++i)
            limits[i].Value = values[i];
        EXPECT_EQ(limitsInOrder(limits), ordered) << values[0] << ' ' << values[1];
    }
}

} // namespace

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
        {{329, 329, 1}, moveSectorTo, 999, {329, 359, 1}},
        {{0, 0, 0}, moveSectorFrom, -999, {-359, 0, 0}},
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
