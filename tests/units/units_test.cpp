#include "units/cardinal.h"
#include "units/conversion.h"
#include "units/detection.h"
#include "units/unit_change.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace skyhold {
namespace {

void setDefaultSpeedTexts(UnitControls& units) {
    units.StringKPH = QStringLiteral("KM/HR KM/H KPH");
    units.StringMPH = QStringLiteral("MPH");
    units.StringMPS = QStringLiteral("M/S MPS");
    units.StringKNOTS = QStringLiteral("KNOTS KTS KT");
}

TEST(Conversion, SpeedsUseTheExactFactorsBothWays) {
    // One km/h in each unit; every pair follows from it.
    const std::vector<std::pair<QString, double>> inUnit = {{QStringLiteral("K"), 1.0},
                                                            {QStringLiteral("M"), 1 / 1.609344},
                                                            {QStringLiteral("m"), 1 / 3.6},
                                                            {QStringLiteral("k"), 1 / 1.852}};
    for (const auto& [from, one] : inUnit) {
        for (const auto& [to, other] : inUnit) {
            EXPECT_NEAR(ConvertSpeed(from, to, 37 * one), 37 * other, 1e-12)
                << qPrintable(from + u'>' + to);
        }
    }
    EXPECT_NEAR(ConvertSpeed(u"K", u"m", 10), 2.7777777777, 1e-9);
    EXPECT_NEAR(ConvertSpeed(u"k", u"M", 10), 11.5077944, 1e-6);
    EXPECT_EQ(ConvertSpeed(u"m", u"K", 5), 18.0);
    EXPECT_EQ(ConvertSpeed(u"", u"K", 12.3), 12.3);
    EXPECT_EQ(ConvertSpeed(u"K", u"x", 12.3), 12.3);
}

TEST(Conversion, TemperaturesAreWholeDegreesHalvesToEven) {
    struct Case {
        double value;
        const char16_t* to;
        double temperature;
        double difference;
    };
    const std::vector<Case> cases = {
        {0.5, u"F", 33, 1},   {22.5, u"C", -5, 12},  {2.5, u"F", 36, 4},    {7.5, u"F", 46, 14},
        {-2.5, u"F", 28, -4}, {212, u"C", 100, 118}, {-40, u"F", -40, -72}, {31.9, u"C", 0, 18},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(ConvertTemperature(u"", c.to, c.value), c.temperature) << c.value;
        EXPECT_EQ(ConvertTemperatureDifference(u"", c.to, c.value), c.difference) << c.value;
    }
    EXPECT_FALSE(std::signbit(ConvertTemperature(u"F", u"C", 31.9))) << "shown as -0";
}

class UnitChange : public testing::Test {
  protected:
    UnitChange() {
        for (std::size_t i = 0; i < 3; ++i) {
            const double step = static_cast<double>(i) * 10;
            conditions.LimitWind[i].Value = 10 + step;
            conditions.LimitGust[i].Value = 20 + step;
            conditions.LimitTemp[i].Value = 0.5 + step;
            conditions.LimitDew[i].Value = 2.5 + step;
            conditions.LimitHum[i].Value = 50 + step;
        }
        units.Loading = true;
        speed(0);
        temperature(0);
        units.Loading = false;
    }

    void speed(int index) { UnitsSpeed_Click(index, units, conditions, readings, history()); }
    void temperature(int index) { UnitsTemp_Click(index, units, conditions, readings, history()); }
    ConvertHistory history() {
        return [this](const QString& from, const QString& to) {
            converted << from + u'>' + to;
        };
    }
    static std::vector<double> values(const ThreeBoxes& boxes) {
        return {boxes[0].Value, boxes[1].Value, boxes[2].Value};
    }

    UnitControls units;
    ConditionControls conditions;
    CurrentReadings readings;
    QStringList converted;
};

TEST_F(UnitChange, WhileSettingsLoadTheUnitIsOnlyRecorded) {
    units.Loading = true;
    speed(3);
    temperature(1);
    EXPECT_EQ(readings.SpeedUnit, QStringLiteral("k"));
    EXPECT_EQ(units.PreviousSpeedUnit, QStringLiteral("k"));
    EXPECT_EQ(units.SpeedUnitText.Caption.value(), QStringLiteral("knot"));
    EXPECT_EQ(readings.TemperatureUnit, QStringLiteral("F"));
    EXPECT_EQ(units.PreviousTemperatureUnit, QStringLiteral("F"));
    EXPECT_EQ(units.TemperatureUnitText.Caption.value(), QStringLiteral("°F"));
    EXPECT_EQ(values(conditions.LimitWind), (std::vector{10.0, 20.0, 30.0}));
    EXPECT_EQ(values(conditions.LimitTemp), (std::vector{0.5, 10.5, 20.5}));
    EXPECT_TRUE(converted.isEmpty());
}

TEST_F(UnitChange, SpeedConvertsWindAndGustLimitsAndTheHistoryOnce) {
    conditions.LimitWind[0].Value = 36;
    speed(2);
    EXPECT_EQ(conditions.LimitWind[0].Value, 10.0);
    EXPECT_DOUBLE_EQ(conditions.LimitGust[2].Value, 40 / 3.6);
    EXPECT_EQ(readings.SpeedUnit, QStringLiteral("m"));
    EXPECT_EQ(units.SpeedUnitText.Caption.value(), QStringLiteral("m/s"));
    speed(0);
    EXPECT_EQ(conditions.LimitWind[0].Value, 36.0);
    speed(4);
    speed(-1);
    EXPECT_EQ(readings.SpeedUnit, QStringLiteral("K"));
    EXPECT_EQ(converted, (QStringList{QStringLiteral("K>m"), QStringLiteral("m>K")}));
    EXPECT_EQ(values(conditions.LimitTemp), (std::vector{0.5, 10.5, 20.5}));
}

TEST_F(UnitChange, TemperatureConvertsDewLimitsAsDifferences) {
    temperature(1);
    EXPECT_EQ(values(conditions.LimitTemp), (std::vector{33.0, 51.0, 69.0}));
    EXPECT_EQ(values(conditions.LimitDew), (std::vector{4.0, 22.0, 40.0}));
    EXPECT_EQ(values(conditions.LimitHum), (std::vector{50.0, 60.0, 70.0}));
    EXPECT_EQ(values(conditions.LimitWind), (std::vector{10.0, 20.0, 30.0}));
    temperature(0);
    EXPECT_EQ(values(conditions.LimitTemp), (std::vector{1.0, 11.0, 21.0})) << "each way rounds";
    EXPECT_EQ(converted, (QStringList{QStringLiteral("C>F"), QStringLiteral("F>C")}));
}

TEST_F(UnitChange, ChoosingTheUnitInForceLeavesLimitsAlone) {
    readings.TemperatureUnit = QStringLiteral(" "); // the file's unit was unknown for a while
    temperature(0);
    speed(0);
    EXPECT_EQ(readings.TemperatureUnit, QStringLiteral("C"));
    EXPECT_EQ(values(conditions.LimitTemp), (std::vector{0.5, 10.5, 20.5}));
    EXPECT_EQ(values(conditions.LimitDew), (std::vector{2.5, 12.5, 22.5}));
    EXPECT_TRUE(converted.isEmpty());
}

TEST(Detection, SpeedUnitTextOccursInAList) {
    UnitControls units;
    setDefaultSpeedTexts(units);
    const std::vector<std::pair<const char16_t*, const char16_t*>> cases = {
        {u"km/h", u"K"}, {u"KPH", u"K"}, {u"km/hr", u"K"}, {u"mph", u"M"},  {u"m/s", u"m"},
        {u"mps", u"m"},  {u"kts", u"k"}, {u"kt", u"k"},    {u"Bft", u"k0"}, {u"", u"K"},
    };
    for (const auto& [text, code] : cases) {
        EXPECT_EQ(DetectSpeedUnit(text, units, QStringLiteral("k0")), QStringView(code))
            << qPrintable(QString::fromUtf16(text));
    }
}

TEST(Detection, TemperaturePieceOccursInTheUnitText) {
    struct Case {
        const char16_t* celsius;
        const char16_t* fahrenheit;
        const char16_t* text;
        const char16_t* code;
    };
    const std::vector<Case> cases = {
        {u"C", u"F", u"°C", u"C"},      {u"C", u"F", u"°F", u"F"},
        {u"C", u"F", u"K", u" "},       {u"C", u"F", u"", u" "},
        {u"C", u"F", u"degc", u" "},    {u"DEGC;CELS", u"F", u"CELSIUS", u"C"},
        {u"DEGC", u"F", u"degC", u" "}, {u"", u"F", u"C", u" "},
        {u"C;", u"F", u"F", u"C"},      {u"C;", u"F", u"", u"C"},
    };
    for (const Case& c : cases) {
        UnitControls units;
        units.StringDC = QString::fromUtf16(c.celsius);
        units.StringDF = QString::fromUtf16(c.fahrenheit);
        EXPECT_EQ(DetectTemperatureUnit(c.text, units), QStringView(c.code))
            << qPrintable(QString::fromUtf16(c.text));
    }
}

TEST(Cardinal, FirstEqualLabelGivesItsDegrees) {
    std::array<QString, 16> labels;
    constexpr std::array names{"N", "NNE", "NE", "ENE", "E", "ESE", "SE", "SSE",
                               "S", "SSW", "SW", "WSW", "W", "WNW", "NW", "NNW"};
    for (std::size_t i = 0; i < names.size(); ++i) {
        labels[i] = QString::fromLatin1(names[i]);
        EXPECT_EQ(CardinalToDegrees(labels[i], labels), 22.5 * static_cast<double>(i));
    }
    EXPECT_EQ(CardinalToDegrees(u" nne ", labels), 22.5);
    EXPECT_EQ(CardinalToDegrees(u"O", labels), 0);
    labels[4] = QStringLiteral("W");
    EXPECT_EQ(CardinalToDegrees(u"w", labels), 90) << "the first of two equal labels";
}

} // namespace
} // namespace skyhold
