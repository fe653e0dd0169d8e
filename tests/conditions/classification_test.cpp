#include "conditions/classification.h"

#include "monitor.h"

namespace skyhold {

namespace {

struct Classification : Monitor {
    void classify(Quantity quantity, std::optional<double> value) {
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
            readings.StationTemperature = value;
            ClassifyTemperature(display.LCond[Quantity::Temperature], value, readings, controls);
            break;
        default:
            readings.HumidityValue = value;
            ClassifyHumidity(display, readings, controls);
        }
    }
    void classifyDew(const QString& temperature, const QString& dewPoint,
                     const NumberForms& forms = {}) {
        display.LVal[Quantity::Temperature].Caption = temperature;
        display.LVal[Quantity::Dew].Caption = dewPoint;
        ClassifyDew(display, readings, controls, forms);
    }
    void classifyCloud(std::int32_t cloud) {
        readings.Condition[Quantity::Cloud] = cloud;
        ClassifyCloud(display, readings, controls, safety, sensorDescription, clock.MsClock());
    }
    void classifyRainAndBrightness(std::int32_t both) {
        readings.Condition[Quantity::Rain] = readings.Condition[Quantity::Brightness] = both;
        ClassifyRain(display, readings, controls, sensorDescription);
        ClassifyBrightness(display, readings, controls, sensorDescription);
    }
    static void expectShown(const Label& label, const QString& text, Colour colour) {
        EXPECT_EQ(label.Caption.value(), text);
        EXPECT_EQ(label.ForeColor.value(), colour);
    }
};

TEST_F(Classification, BandsOfTheStationQuantities) {
    using enum Quantity;
    const struct {
        std::optional<double> value;
        Quantity quantity;
        std::int32_t level;
        QString text;
        Colour colour;
    } rows[] = {
        {10, Wind, 1, u"Calm"_s, kYellow},
        {10.01, Wind, 2, u"Windy"_s, kOrange},
        {99, Wind, 3, u"Very Windy"_s, kOrange},
        {99.5, Wind, 0, u"Unknown"_s, kYellow},
        {kNan, Wind, 0, u"Unknown"_s, kYellow},
        {-HUGE_VAL, Wind, 0, u"Unknown"_s, kYellow},
        {0, Gust, 1, u"Calm"_s, kYellow},
        {20, Gust, 2, u"Gusty"_s, kOrange},
        {20.1, Gust, 3, u"Very Gusty"_s, kOrange},
        {{}, Gust, 0, {}, kYellow}, // missing: neither a level nor the one before
        {-5, Temperature, 1, u"Cold"_s, kOrange},
        {-4.9, Temperature, 2, u"Fine"_s, kYellow},
        {50.1, Temperature, 3, u"Hot"_s, kOrange},
        {{}, Temperature, 0, {}, kYellow},
        {80, Humidity, 1, u"Fine"_s, kYellow},
        {90, Humidity, 2, u"Humid"_s, kYellow},
        {90.1, Humidity, 3, u"Very Humid"_s, kOrange},
        {100, Humidity, 0, u"Unknown"_s, kYellow},
        {90.1, Humidity, 3, u"Very Humid"_s, kOrange},
        {{}, Humidity, 0, {}, kYellow},
        {{}, Wind, 0, {}, kYellow},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message()
                     << static_cast<int>(row.quantity) << ": " << row.value.value_or(kNan));
        classify(row.quantity, row.value);
        EXPECT_EQ(readings.Condition[row.quantity], row.level);
        expectShown(display.LCond[row.quantity], row.text, row.colour);
    }
    // Where the user wants it so, a value beyond the last limit is shown as unsafe.
    controls.BeyondLimitUnsafe.Value = 1;
    for (const Quantity quantity : {Wind, Gust, Temperature, Humidity}) {
        classify(quantity, 100);
        expectShown(display.LCond[quantity], u"Unknown"_s, kOrange);
        classify(quantity, {});
        expectShown(display.LCond[quantity], {}, kYellow);
    }
    // Limits out of order give the lowest level that matches.
    controls.Limit[Quantity::Wind][0].Value = 20;
    controls.Limit[Quantity::Wind][1].Value = 10;
    EXPECT_EQ(bandLevel(15, controls.Limit[Quantity::Wind]), 1);
    EXPECT_EQ(bandLevel(21, controls.Limit[Quantity::Wind]), 3);
}

TEST_F(Classification, DewPointSpreadOfTheShownTexts) {
    const NumberForms comma{u","_s, u"."_s};
    const struct {
        QString temperature, dewPoint;
        NumberForms forms;
        QString text;
        std::int32_t level; // 2 was there before
        Colour colour;
    } rows[] = {
        {u"12.0"_s, u"9.5"_s, {}, u"Condensation"_s, 1, kOrange},
        {u"8.3"_s, u"5.3"_s, {}, u"Condensation"_s, 1, kOrange}, // 3.0000000000000009 in binary
        {u"-1.0"_s, u"1"_s, {}, u"Condensation"_s, 1, kOrange},
        {u"12.01"_s, u"9.0"_s, {}, u"Humid"_s, 2, kYellow},
        {u"14.5"_s, u"9.5"_s, {}, u"Humid"_s, 2, kYellow},
        {u"14.6"_s, u"9.5"_s, {}, u"Fine"_s, 3, kYellow},
        {u"99"_s, u"-1"_s, {}, u"Unknown"_s, 0, kYellow},
        {u"12,0"_s, u"9,5"_s, comma, u"Condensation"_s, 1, kOrange},
        {u"12.0"_s, u""_s, {}, u""_s, 0, kYellow},
        {u""_s, u"9.5"_s, {}, u""_s, 0, kYellow},
        {u"---"_s, u"9.5"_s, {}, u""_s, 0, kYellow},
        {u"12.0"_s, u"nan"_s, {}, u""_s, 0, kYellow},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(qPrintable(row.temperature + u" / "_s + row.dewPoint));
        readings.Condition[Quantity::Dew] = DewMedium;
        classifyDew(row.temperature, row.dewPoint, row.forms);
        EXPECT_EQ(readings.Condition[Quantity::Dew], row.level);
        expectShown(display.LCond[Quantity::Dew], row.text, row.colour);
    }
}

TEST_F(Classification, InvalidStationDataBlanksTheTextsAndKeepsTheLevels) {
    readings.StationValid = false;
    readings.Condition[Quantity::Wind] = WindVeryWindy;
    readings.Condition[Quantity::Gust] = WindWindy;
    readings.Condition[Quantity::Dew] = DewLow;
    readings.Condition[Quantity::Humidity] = HumidityHigh;
    const CurrentReadings before = readings;
    classifyDew(u"20"_s, u"1"_s);
    for (const Quantity quantity : {Quantity::Wind, Quantity::Gust, Quantity::Humidity})
        classify(quantity, 1);
    for (const Quantity quantity :
         {Quantity::Wind, Quantity::Gust, Quantity::Dew, Quantity::Humidity}) {
        EXPECT_EQ(readings.Condition[quantity], before.level(quantity));
        expectShown(display.LCond[quantity], {}, kOrange);
    }
}

TEST_F(Classification, WindOutsideItsSectorIsNotShownAsUnsafe) {
    controls.Direction[Quantity::Wind][1].Caption = u"090  180  00"_s;
    readings.WindDirection = 270;
    classify(Quantity::Wind, 15);
    EXPECT_EQ(display.LCond[Quantity::Wind].ForeColor.value(), kYellow);
    EXPECT_EQ(sectors.WindOutsideSince, clock.MsClock());
    EXPECT_EQ(sectors.GustOutsideSince, 0);

    readings.WindDirection = 100;
    classify(Quantity::Wind, 15);
    EXPECT_EQ(display.LCond[Quantity::Wind].ForeColor.value(), kOrange);
}

TEST_F(Classification, SensorLevelsAreShownAsTheSensorProgramNamesThem) {
    const struct {
        std::int32_t level;
        QString rain;
        Colour rainColour;
        QString brightness;
        Colour brightnessColour;
    } rows[] = {
        {0, u"Unknown"_s, kYellow, u"Unknown"_s, kYellow},
        {1, u"Dry"_s, kYellow, u"Dark"_s, kYellow},
        {2, u"Wet"_s, kOrange, u"Light"_s, kYellow},
        {3, u"Rain"_s, kOrange, u"Very Light"_s, kOrange},
        {4, u""_s, kYellow, u""_s, kYellow},
        {-1, u""_s, kYellow, u""_s, kYellow},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.level);
        classifyRainAndBrightness(row.level);
        expectShown(display.LCond[Quantity::Rain], row.rain, row.rainColour);
        expectShown(display.LCond[Quantity::Brightness], row.brightness, row.brightnessColour);
    }
    // While the sensor program fails nothing is shown of it.
    readings.SensorError = true;
    const std::array labels{&display.LCond[Quantity::Rain], &display.LCond[Quantity::Brightness], &display.LCond[Quantity::Cloud]};
    for (Label* label : labels)
        PaintLabel(*label, kGrey, u"last"_s);
    classifyRainAndBrightness(3);
    classifyCloud(CloudVeryCloudy);
    for (const Label* label : labels)
        expectShown(*label, u"last"_s, kGrey);
}

TEST_F(Classification, CloudyStaysYellowUntilItsDelayHasRunOut) {
    controls.Cond[Quantity::Cloud][1].Value = 1;
    safety.CloudAlarmDelay = 300;
    classifyCloud(CloudClear);
    expectShown(display.LCond[Quantity::Cloud], u"Clear"_s, kYellow);
    classifyCloud(CloudCloudy);
    expectShown(display.LCond[Quantity::Cloud], u"Cloudy"_s, kYellow);
    clock.advanceSeconds(299);
    classifyCloud(CloudCloudy);
    EXPECT_EQ(display.LCond[Quantity::Cloud].ForeColor.value(), kYellow);
    clock.advanceSeconds(1);
    classifyCloud(CloudCloudy);
    EXPECT_EQ(display.LCond[Quantity::Cloud].ForeColor.value(), kOrange);

    // Changes are noted while the level is not flagged, too.
    controls.Cond[Quantity::Cloud][1].Value = 0;
    classifyCloud(CloudClear);
    classifyCloud(CloudCloudy);
    EXPECT_EQ(safety.CloudChangeTime, clock.MsClock());
    EXPECT_EQ(display.LCond[Quantity::Cloud].ForeColor.value(), kYellow);
}

} // namespace

} // namespace skyhold
