#include "conditions/classification.h"

#include "monitor.h"

#include <limits>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

struct Classification : Monitor {
    void classify(Quantity quantity, double value) {
        switch (quantity) {
        case Quantity::Wind:
            readings.WindSpeed = value;
            ClassifyWind(display, readings, controls, sectors, clock.MsClock());
            break;
        case Quantity::Gust:
            readings.GustSpeed = value;
            ClassifyGust(display, readings, controls, sectors, clock.MsClock());
            break;
        case Quantity::Temperature:
            ClassifyTemperature(display.LCondTemp, value, readings, controls);
            break;
        default:
            readings.HumidityValue = value;
            ClassifyHumidity(display, readings, controls);
        }
    }

    void classifyCloud(std::int32_t cloud) {
        readings.CloudCondition = cloud;
        ClassifyCloud(display, readings, controls, safety, sensorDescription, clock.MsClock());
    }
};

TEST_F(Classification, BandsOfTheStationQuantities) {
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    const struct {
        double value;
        Quantity quantity;
        std::int32_t level;
        QString text;
        Colour colour;
    } rows[] = {
        {10, Quantity::Wind, 1, u"Calm"_s, kYellow},
        {10.01, Quantity::Wind, 2, u"Windy"_s, kOrange},
        {99, Quantity::Wind, 3, u"Very Windy"_s, kOrange},
        {99.5, Quantity::Wind, 0, u"Unknown"_s, kYellow},
        {kNan, Quantity::Wind, 0, u"Unknown"_s, kYellow},
        {-kInfinity, Quantity::Wind, 0, u"Unknown"_s, kYellow},
        {0, Quantity::Gust, 1, u"Calm"_s, kYellow},
        {20, Quantity::Gust, 2, u"Gusty"_s, kOrange},
        {20.1, Quantity::Gust, 3, u"Very Gusty"_s, kOrange},
        {kNan, Quantity::Gust, 0, u"Unknown"_s, kYellow},
        {-5, Quantity::Temperature, 1, u"Cold"_s, kOrange},
        {-4.9, Quantity::Temperature, 2, u"Fine"_s, kYellow},
        {50.1, Quantity::Temperature, 3, u"Hot"_s, kOrange},
        {kNan, Quantity::Temperature, 0, u"Unknown"_s, kYellow},
        {80, Quantity::Humidity, 1, u"Fine"_s, kYellow},
        {90, Quantity::Humidity, 2, u"Humid"_s, kYellow},
        {90.1, Quantity::Humidity, 3, u"Very Humid"_s, kOrange},
        {100, Quantity::Humidity, 0, u"Unknown"_s, kYellow},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << static_cast<int>(row.quantity) << ": " << row.value);
        classify(row.quantity, row.value);
        EXPECT_EQ(readings.level(row.quantity), row.level);
        EXPECT_EQ(display.condition(row.quantity).Caption.value(), row.text);
        EXPECT_EQ(display.condition(row.quantity).ForeColor.value(), row.colour);
    }
}

TEST_F(Classification, LimitsOutOfOrderGiveTheLowestMatchingLevel) {
    controls.LimitWind[0].Value = 20;
    controls.LimitWind[1].Value = 10;
    EXPECT_EQ(bandLevel(15, controls.LimitWind), 1);
    EXPECT_EQ(bandLevel(21, controls.LimitWind), 3);
}

TEST_F(Classification, DewPointSpreadOfTheShownTexts) {
    const NumberForms point;
    const NumberForms comma{u","_s, u"."_s};
    const struct {
        QString temperature;
        QString dewPoint;
        NumberForms forms;
        QString text;
        std::int32_t level; // 2 was there before
        Colour colour;
    } rows[] = {
        {u"12.0"_s, u"9.5"_s, point, u"Condensation"_s, 1, kOrange},
        {u"8.3"_s, u"5.3"_s, point, u"Condensation"_s, 1, kOrange}, // 3.0000000000000009 in binary
        {u"-1.0"_s, u"1"_s, point, u"Condensation"_s, 1, kOrange},
        {u"12.01"_s, u"9.0"_s, point, u"Humid"_s, 2, kYellow},
        {u"14.5"_s, u"9.5"_s, point, u"Humid"_s, 2, kYellow},
        {u"14.6"_s, u"9.5"_s, point, u"Fine"_s, 3, kYellow},
        {u"99"_s, u"-1"_s, point, u"Unknown"_s, 0, kYellow},
        {u"12,0"_s, u"9,5"_s, comma, u"Condensation"_s, 1, kOrange},
        {u"12.0"_s, u""_s, point, u""_s, 2, kYellow},
        {u""_s, u"9.5"_s, point, u""_s, 2, kYellow},
        {u"---"_s, u"9.5"_s, point, u""_s, 2, kYellow},
        {u"12.0"_s, u"nan"_s, point, u""_s, 2, kYellow},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(qPrintable(row.temperature + u" / "_s + row.dewPoint));
        readings.DewCondition = DewMedium;
        display.LValTemperature.Caption = row.temperature;
        display.LValDewPoint.Caption = row.dewPoint;
        ClassifyDew(display, readings, controls, row.forms);
        EXPECT_EQ(readings.DewCondition, row.level);
        EXPECT_EQ(display.LCondDewPoint.Caption.value(), row.text);
        EXPECT_EQ(display.LCondDewPoint.ForeColor.value(), row.colour);
    }
}

TEST_F(Classification, InvalidStationDataBlanksTheTextsAndKeepsTheLevels) {
    readings.StationValid = false;
    readings.WindSpeed = readings.GustSpeed = readings.HumidityValue = 1;
    display.LValTemperature.Caption = u"20"_s;
    display.LValDewPoint.Caption = u"1"_s;
    readings.WindCondition = WindVeryWindy;
    readings.GustCondition = WindWindy;
    readings.DewCondition = DewLow;
    readings.HumidityCondition = HumidityHigh;
    constexpr std::array quantities{Quantity::Wind, Quantity::Gust, Quantity::Dew,
                                    Quantity::Humidity};
    for (const Quantity quantity : quantities)
        PaintLabel(display.condition(quantity), kGrey, u"before"_s);

    ClassifyDew(display, readings, controls, NumberForms{});
    ClassifyHumidity(display, readings, controls);
    ClassifyWind(display, readings, controls, sectors, clock.MsClock());
    ClassifyGust(display, readings, controls, sectors, clock.MsClock());

    EXPECT_EQ(readings.WindCondition, WindVeryWindy);
    EXPECT_EQ(readings.GustCondition, WindWindy);
    EXPECT_EQ(readings.DewCondition, DewLow);
    EXPECT_EQ(readings.HumidityCondition, HumidityHigh);
    for (const Quantity quantity : quantities) {
        EXPECT_EQ(display.condition(quantity).Caption.value(), QString());
        EXPECT_EQ(display.condition(quantity).ForeColor.value(), kOrange);
    }
}

TEST_F(Classification, WindOutsideItsSectorIsNotShownAsUnsafe) {
    controls.DirectionWind[1].Caption = u"090  180  00"_s;
    readings.WindDirection = 270;
    classify(Quantity::Wind, 15);
    EXPECT_EQ(display.LCondWind.ForeColor.value(), kYellow);
    EXPECT_EQ(sectors.WindOutsideSince, clock.MsClock());
    EXPECT_EQ(sectors.GustOutsideSince, 0);

    readings.WindDirection = 100;
    classify(Quantity::Wind, 15);
    EXPECT_EQ(display.LCondWind.ForeColor.value(), kOrange);
}

TEST_F(Classification, SensorLevelsAreShownAsTheSensorProgramNamesThem) {
    const struct {
        std::int32_t level;
        Colour rainColour;
        Colour brightnessColour;
        QString rain;
        QString brightness;
    } rows[] = {
        {0, kYellow, kYellow, u"Unknown"_s, u"Unknown"_s},
        {1, kYellow, kYellow, u"Dry"_s, u"Dark"_s},
        {2, kOrange, kYellow, u"Wet"_s, u"Light"_s},
        {3, kOrange, kOrange, u"Rain"_s, u"Very Light"_s},
        {4, kYellow, kYellow, u""_s, u""_s},
        {-1, kYellow, kYellow, u""_s, u""_s},
    };
    const auto show = [this] {
        ClassifyRain(display, readings, controls, sensorDescription);
        ClassifyBrightness(display, readings, controls, sensorDescription);
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.level);
        readings.RainCondition = readings.BrightnessCondition = row.level;
        show();
        EXPECT_EQ(display.LCondRain.Caption.value(), row.rain);
        EXPECT_EQ(display.LCondRain.ForeColor.value(), row.rainColour);
        EXPECT_EQ(display.LCondBrightness.Caption.value(), row.brightness);
        EXPECT_EQ(display.LCondBrightness.ForeColor.value(), row.brightnessColour);
    }

    readings.SensorError = true;
    for (Label* label : {&display.LCondRain, &display.LCondBrightness, &display.LCondCloud})
        PaintLabel(*label, kGrey, u"last"_s);
    readings.RainCondition = readings.BrightnessCondition = 3;
    show();
    classifyCloud(CloudVeryCloudy);
    for (const Label* label : {&display.LCondRain, &display.LCondBrightness, &display.LCondCloud}) {
        EXPECT_EQ(label->Caption.value(), u"last"_s);
        EXPECT_EQ(label->ForeColor.value(), kGrey);
    }
}

TEST_F(Classification, CloudyStaysYellowUntilItsDelayHasRunOut) {
    controls.CondCloud[1].Value = 1;
    safety.CloudAlarmDelay = 300;
    classifyCloud(CloudClear);
    EXPECT_EQ(display.LCondCloud.Caption.value(), u"Clear"_s);
    classifyCloud(CloudCloudy);
    EXPECT_EQ(display.LCondCloud.Caption.value(), u"Cloudy"_s);
    EXPECT_EQ(display.LCondCloud.ForeColor.value(), kYellow);
    clock.advanceSeconds(299);
    classifyCloud(CloudCloudy);
    EXPECT_EQ(display.LCondCloud.ForeColor.value(), kYellow);
    clock.advanceSeconds(1);
    classifyCloud(CloudCloudy);
    EXPECT_EQ(display.LCondCloud.ForeColor.value(), kOrange);

    // Changes are noted while the level is not flagged, too.
    controls.CondCloud[1].Value = 0;
    classifyCloud(CloudClear);
    classifyCloud(CloudCloudy);
    EXPECT_EQ(safety.CloudChangeTime, clock.MsClock());
    EXPECT_EQ(display.LCondCloud.ForeColor.value(), kYellow);
}

} // namespace

} // namespace skyhold
