// SPDX-License-Identifier: GPL-3.0-or-later
#include "units/cardinal.h"
#include "units/conversion.h"
#include "units/detection.h"
#include "units/unit_change.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

TEST(Conversion, SpeedsUseTheExactFactorsBothWays) {
    // One km/h in each unit; every pair follows from it.
    const std::pair<SpeedCode, double> inUnit[] = {{SpeedCode::KilometresPerHour, 1.0},
                                                   {SpeedCode::MilesPerHour, 1 / 1.609344},
                                                   {SpeedCode::MetresPerSecond, 1 / 3.6},
                                                   {SpeedCode::Knots, 1 / 1.852}};
    for (const auto& [from, one] : inUnit) {
        for (const auto& [to, other] : inUnit)
            EXPECT_NEAR(ConvertSpeed(from, to, 37 * one), 37 * other, 1e-12)
                << qPrintable(letterOf(from) + u'>' + letterOf(to));
    }
    EXPECT_EQ(ConvertSpeed(SpeedCode::MetresPerSecond, SpeedCode::KilometresPerHour, 5), 18.0);
}

TEST(Conversion, TemperaturesAreWholeDegreesHalvesToEven) {
    using enum TemperatureCode;
    const struct {
        double value;
        TemperatureCode to;
        double temperature, difference;
    } cases[] = {
        {0.5, Fahrenheit, 33, 1},    {22.5, Celsius, -5, 12},    {2.5, Fahrenheit, 36, 4},
        {7.5, Fahrenheit, 46, 14},   {-2.5, Fahrenheit, 28, -4}, {212, Celsius, 100, 118},
        {-40, Fahrenheit, -40, -72}, {31.9, Celsius, 0, 18},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(ConvertTemperature(Unknown, c.to, c.value), c.temperature) << c.value;
        EXPECT_EQ(ConvertTemperatureDifference(Unknown, c.to, c.value), c.difference) << c.value;
    }
    EXPECT_FALSE(std::signbit(ConvertTemperature(Fahrenheit, Celsius, 31.9))) << "shown as -0";
}

struct UnitChange : testing::Test {
    UnitChange() {
        for (std::size_t i = 0; i < 3; ++i) {
            const double step = static_cast<double>(i) * 10;
            conditions.Limit[Quantity::Wind][i].Value = 10 + step;
            conditions.Limit[Quantity::Gust][i].Value = 20 + step;
            conditions.Limit[Quantity::Temperature][i].Value = 0.5 + step;
            conditions.Limit[Quantity::Dew][i].Value = 2.5 + step;
            conditions.Limit[Quantity::Humidity][i].Value = 50 + step;
        }
        units.Loading = true;
        speed(0);
        temperature(0);
        units.Loading = false;
    }

    template <class Code>
    ConvertHistory<Code> history() {
        return [this](Code from, Code to) {
            converted << letterOf(from) + u'>' + letterOf(to);
        };
    }
    void speed(int index) {
        UnitsSpeed_Click(index, units, conditions, readings, history<SpeedCode>());
    }
    void temperature(int index) {
        UnitsTemp_Click(index, units, conditions, readings, history<TemperatureCode>());
    }
    using Limits = std::vector<double>;
    static Limits values(const ThreeBoxes& boxes) {
        return {boxes[0].Value, boxes[1].Value, boxes[2].Value};
    }
    void expectLimits(const Limits& wind, const Limits& temperature, const Limits& dew) const {
        EXPECT_EQ(values(conditions.Limit[Quantity::Wind]), wind);
        EXPECT_EQ(values(conditions.Limit[Quantity::Temperature]), temperature);
        EXPECT_EQ(values(conditions.Limit[Quantity::Dew]), dew);
        EXPECT_EQ(values(conditions.Limit[Quantity::Humidity]), (Limits{50, 60, 70}));
    }

    UnitControls units;
    ConditionControls conditions;
    CurrentReadings readings;
    QStringList converted;
};

TEST_F(UnitChange, SpeedConvertsWindAndGustLimitsAndTheHistoryOnce) {
    conditions.Limit[Quantity::Wind][0].Value = 36;
    speed(2);
    EXPECT_EQ(conditions.Limit[Quantity::Wind][0].Value, 10.0);
    EXPECT_DOUBLE_EQ(conditions.Limit[Quantity::Gust][2].Value, 40 / 3.6);
    EXPECT_EQ(readings.SpeedUnit, SpeedCode::MetresPerSecond);
    EXPECT_EQ(units.SpeedUnitText.Caption.value(), u"m/s"_s);
    speed(0);
    speed(4);
    speed(-1);
    EXPECT_EQ(readings.SpeedUnit, SpeedCode::KilometresPerHour);
    EXPECT_EQ(converted, (QStringList{u"K>m"_s, u"m>K"_s}));
    EXPECT_EQ(conditions.Limit[Quantity::Wind][0].Value, 36.0);
    EXPECT_EQ(values(conditions.Limit[Quantity::Temperature]), (Limits{0.5, 10.5, 20.5}));
}

TEST_F(UnitChange, TemperatureConvertsDewLimitsAsDifferences) {
    temperature(1);
    expectLimits({10, 20, 30}, {33, 51, 69}, {4, 22, 40});
    temperature(0);
    expectLimits({10, 20, 30}, {1, 11, 21}, {2, 12, 22}); // each way rounds
    EXPECT_EQ(converted, (QStringList{u"C>F"_s, u"F>C"_s}));
}

TEST_F(UnitChange, ChoosingTheUnitInForceOrLoadingSettingsLeavesLimitsAlone) {
    readings.TemperatureUnit = TemperatureCode::Unknown; // the file's unit was unknown for a while
    temperature(0);
    speed(0);
    EXPECT_EQ(readings.TemperatureUnit, TemperatureCode::Celsius);
    expectLimits({10, 20, 30}, {0.5, 10.5, 20.5}, {2.5, 12.5, 22.5});
    units.Loading = true;
    speed(3);
    temperature(1);
    EXPECT_EQ(units.PreviousSpeedUnit, SpeedCode::Knots);
    EXPECT_EQ(units.SpeedUnitText.Caption.value(), u"knot"_s);
    EXPECT_EQ(units.TemperatureUnitText.Caption.value(), u"°F"_s);
    expectLimits({10, 20, 30}, {0.5, 10.5, 20.5}, {2.5, 12.5, 22.5});
    EXPECT_TRUE(converted.isEmpty());
}

TEST(Detection, SpeedUnitTextOccursInAList) {
    UnitControls units;
    units.StringKPH = u"KM/HR KM/H KPH"_s;
    units.StringMPH = u"MPH"_s;
    units.StringMPS = u"M/S MPS"_s;
    units.StringKNOTS = u"KNOTS KTS KT"_s;
    const std::pair<const char16_t*, const char16_t*> cases[] = {
        {u"km/h", u"K"}, {u"KPH", u"K"}, {u"km/hr", u"K"}, {u"mph", u"M"}, {u"m/s", u"m"},
        {u"mps", u"m"},  {u"kts", u"k"}, {u"kt", u"k"},    {u"Bft", u"m"}, {u"", u"K"},
    };
    for (const auto& [text, code] : cases)
        EXPECT_EQ(letterOf(DetectSpeedUnit(text, units, SpeedCode::MetresPerSecond)),
                  QStringView(code))
            << qPrintable(QString::fromUtf16(text));
}

TEST(Detection, TemperaturePieceOccursInTheUnitText) {
    const struct {
        const char16_t *celsius, *fahrenheit, *text, *code;
    } cases[] = {
        {u"C", u"F", u"°C", u"C"},      {u"C", u"F", u"°F", u"F"},
        {u"C", u"F", u"K", u" "},       {u"C", u"F", u"", u" "},
        {u"C", u"F", u"degc", u" "},    {u"DEGC;CELS", u"F", u"CELSIUS", u"C"},
        {u"DEGC", u"F", u"degC", u" "}, {u"", u"F", u"C", u" "},
        {u"C;", u"F", u"F", u"C"},      {u"C;", u"F", u"", u"C"},
    };
    for (const auto& c : cases) {
        UnitControls units;
        units.StringDC = QString::fromUtf16(c.celsius);
        units.StringDF = QString::fromUtf16(c.fahrenheit);
        EXPECT_EQ(letterOf(DetectTemperatureUnit(c.text, units)), QStringView(c.code))
            << qPrintable(QString::fromUtf16(c.text));
    }
}

TEST(Cardinal, FirstEqualLabelGivesItsDegrees) {
    std::array<QString, 16> labels;
    const QStringList names = u"N NNE NE ENE E ESE SE SSE S SSW SW WSW W WNW NW NNW"_s.split(u' ');
    for (std::size_t i = 0; i < labels.size(); ++i) {
        labels[i] = names[static_cast<qsizetype>(i)];
        EXPECT_EQ(CardinalToDegrees(labels[i], labels), 22.5 * static_cast<double>(i));
    }
    EXPECT_EQ(CardinalToDegrees(u" nne ", labels), 22.5);
    labels[15] = QString();
    for (const char16_t* none : {u"O", u"N/A", u"", u" ", u"270"})
        EXPECT_FALSE(CardinalToDegrees(none, labels)) << qPrintable(QString::fromUtf16(none));
    labels[4] = u"W"_s;
    EXPECT_EQ(CardinalToDegrees(u"w", labels), 90) << "the first of two equal labels";
}

} // namespace
} // namespace skyhold
