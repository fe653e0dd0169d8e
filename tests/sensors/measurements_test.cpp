// SPDX-License-Identifier: GPL-3.0-or-later
#include "sensors/measurements.h"

#include <gtest/gtest.h>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

SensorSettings settingsOf(const QByteArray& items) {
    QStringList faults;
    SensorSettings settings =
        sensorSettings("[source a]\nkind = file\npath = /values\n" + items, faults);
    EXPECT_EQ(faults, QStringList());
    return settings;
}

// Texts that come, one after the other, and what is made of each.
struct Step {
    const char* text; // null: none comes, but the time passes
    std::optional<double> value;
    std::optional<std::int32_t> level;
};

void play(const QByteArray& items, Item item, const std::vector<Step>& steps) {
    const SensorSettings settings = settingsOf(items);
    std::int64_t now = 1'000'000;
    Measurements measurements(settings, [&now] { return now; });
    for (const Step& step : steps) {
        now += 5000;
        if (step.text)
            measurements.of(u"a"_s).take(u"x"_s, QString::fromUtf8(step.text), now);
        const std::string what = items.toStdString() + (step.text ? step.text : "nothing");
        const std::optional<double> value = measurements.value(item);
        ASSERT_EQ(value.has_value(), step.value.has_value()) << what;
        if (value) {
            EXPECT_NEAR(*value, *step.value, 1e-9) << what;
        }
        EXPECT_EQ(measurements.level(item), step.level) << what;
        EXPECT_EQ(measurements.missing(true).empty(), measurements.complete(item)) << what;
    }
}

} // namespace

TEST(Measurements, MakesOfATextAValueAndALevel) {
    const auto none = std::nullopt;
    play(
        "[rain]\nvalue = a: x\nlevel2 = above 1\nlevel3 = above 5\nhysteresis = 0.5\nmax-age = 7\n",
        Item::Rain,
        {{"0", 0, 1},
         {"1", 1, 1},
         {"1.2", 1.2, 2},
         {"0.6", 0.6, 2}, // within the hysteresis
         {"0.5", 0.5, 1},
         {"5.1", 5.1, 3},
         {"4.6", 4.6, 3},
         {nullptr, 4.6, 3}, // five seconds old
         {nullptr, none, none},
         {"4.6", 4.6, 3}, // what was missing meanwhile does not make it better
         {"4.5", 4.5, 2},
         {"wet", none, none},
         {"", none, none},
         {"nan", none, none},
         {"1,5", none, none},
         {" 2.5e-1 ", 0.25, 1}});
    play("[brightness]\nvalue = a: x\nlevel2 = below 17\nlevel3 = below 8\nhysteresis = 1\n",
         Item::Brightness,
         {{"20", 20, 1}, {"16.9", 16.9, 2}, {"17.9", 17.9, 2}, {"18", 18, 1}, {"3", 3, 3}});
    play("[cloud]\nvalue = a: x\nunit = F\nscale = 0.1\noffset = 2\nlevel3 = above -5\n",
         Item::Cloud, {{"300", 0, 3}, {"-200", (-18 - 32) * 5.0 / 9, 1}, {"9000", none, none}});
    play("[rain]\nlevel-from = a: x\nlevels = 0 1, Rain now 3\n", Item::Rain,
         {{"0", none, 1}, {"0.0", none, 1}, {"rain NOW", none, 3}, {"2", none, none}});
    play("[cloud]\nlevel-from = a: x\nlevel2 = above 30\nlevel3 = above 70\n", Item::Cloud,
         {{"10", none, 1}, {"80", none, 3}, {"?", none, none}});
}

TEST(Measurements, ComparesTheSkyWithTheAir) {
    const SensorSettings settings =
        settingsOf("[cloud]\nvalue = a: sky\nless-air = yes\nlevel3 = above -10\nmax-age = 60\n"
                   "[temperature]\nvalue = a: air\nmax-age = 6\n");
    std::int64_t now = 0;
    Measurements measurements(settings, [&now] { return now; });
    SourceReadings& source = measurements.of(u"a"_s);
    source.take(u"sky"_s, u"-15"_s, now);
    EXPECT_EQ(measurements.level(Item::Cloud), std::nullopt);
    source.take(u"air"_s, u"0"_s, now);
    EXPECT_EQ(measurements.level(Item::Cloud), 1);
    source.take(u"air"_s, u"-8"_s, now);
    EXPECT_EQ(measurements.level(Item::Cloud), 3);
    now += 10'000; // the air's value is too old now
    EXPECT_EQ(measurements.level(Item::Cloud), std::nullopt);
    EXPECT_EQ(measurements.value(Item::Cloud), -15);
    source.drop(u"sky"_s);
    EXPECT_EQ(measurements.value(Item::Cloud), std::nullopt);
}

TEST(Measurements, SettingsThatDoNotFitAreFaults) {
    const QByteArray source = "[source a]\nkind = file\npath = /x\n";
    const QByteArray rain = "[rain]\nvalue = a: x\nlevel3 = above 1\n";
    struct Case {
        QByteArray text;
        const char* fault;
    };
    const Case cases[] = {
        {"", "nothing is measured"},
        {source + "kinds = 1\n" + rain, "line 4: there is no key \"kinds\""},
        {source + "nonsense\n" + rain, "line 4: neither"},
        {source + rain + "[rian]\n", "no section [rian]"},
        {source + rain + rain, "a second [rain]"},
        {source + source + rain, "a second source a"},
        {"[source a]\nkind = smoke\n" + rain, "kind is file"},
        {"[source a]\nkind = file\n" + rain, "path is missing"},
        {source + "every = soon\n" + rain, "number of seconds"},
        {source + "[rain]\nvalue = b: x\nlevel3 = above 1\n", "no [source b]"},
        {source + "[rain]\nvalue = x\nlevel3 = above 1\n", "SOURCE: ADDRESS"},
        {source + "[rain]\nvalue = a: x\n", "neither limits"},
        {source + "[rain]\nvalue = a: x\nlevel3 = 1\n", "above NUMBER"},
        {source + "[rain]\nvalue = a: x\nlevel2 = above 2\nlevel3 = above 1\n", "level 2 before"},
        {source + "[rain]\nvalue = a: x\nlevel2 = below 2\nlevel3 = above 3\n", "level 2 before"},
        {source + "[rain]\nvalue = a: x\nlevels = wet\n", "TEXT LEVEL"},
        {source + "[rain]\nvalue = a: x\nlevels = wet 4\n", "TEXT LEVEL"},
        {source + rain + "max-age = 0\n", "max-age"},
        {source + rain + "unit = mm\n[wind]\nvalue = a: y\nunit = mm\n", "unit takes one of km/h"},
        {source + "[cloud]\nvalue = a: x\nless-air = yes\nlevel3 = above 1\n", "[temperature]"},
        {source + rain + "[sensor]\nrole = MASTER\n", "needs a [switch]"},
        {source + rain + "[switch]\nkind = indi\nsource = a\nopen = x\nclose = y\n", "kind indi"},
    };
    for (const Case& row : cases) {
        QStringList faults;
        sensorSettings(row.text, faults);
        EXPECT_TRUE(faults.join(u'\n').contains(QString::fromUtf8(row.fault)))
            << row.text.toStdString() << faults.join(u'\n').toStdString();
    }
    QStringList faults;
    const SensorSettings good = sensorSettings(
        source + rain + "# [x]\n[cloud] # sky\nvalue = a: y#z\nlevel3 = above -1 # warm\n", faults);
    EXPECT_EQ(faults, QStringList());
    EXPECT_EQ(good.items[Item::Cloud].value.address, u"y#z");
}

} // namespace skyhold
