// What the station's values become over whole cycles: levels, texts, causes and the verdict.
#include "support/core_fixture.h"

#include <QRegularExpression>

namespace skyhold {
namespace {

class StationInTheCycle : public CoreFixture {
  protected:
    QString timelessCause() {
        static const QRegularExpression since(u", since [0-9:]+"_s);
        return cause().remove(since);
    }
};

TEST_F(StationInTheCycle, stationFileThatCannotBeTrustedIsUnsafeUntilItIsWhole) {
    StartSession(*core_);
    const QByteArray page = stationBytes({});
    const auto holds = [this](const QByteArray& bytes) {
        return std::function([this, bytes] { writeStationBytes(bytes); });
    };
    const struct {
        const char* what;
        std::function<void()> spoil;
        QString status, codes;
    } cases[] = {
        {"missing", [&] { QFile::remove(stationPath()); }, u"- file not available"_s, u"a42"_s},
        {"empty", holds({}), u"- no readings in file"_s, u"a41"_s},
        {"torn", holds(page.first(page.size() / 2)), u"- no readings in file"_s, u"a41"_s},
        {"binary", holds(QByteArray(5000, '\0') + page), u"- not a text file"_s, u"a41"_s},
        {"huge", holds(page + QByteArray(kStationFileLimit, ' ')),
         u"- file too large (over 16 MB)"_s, u"a41"_s},
        {"not rewritten", [&] { clock_.advanceSeconds(171); }, u"too old - 181s old"_s, u"a41"_s},
    };
    for (const auto& [what, spoil, text, code] : cases) {
        SCOPED_TRACE(what);
        spoil();
        cycleWithoutStation();
        EXPECT_EQ(status(), u"Weather Station Data "_s + text);
        EXPECT_EQ(codes(), code);
        EXPECT_TRUE(unsafe());
        EXPECT_FALSE(records().readings.StationValid);
        EXPECT_EQ(records().readings.ReadLedColour, kYellow);
        EXPECT_EQ(records().display.LVal[Quantity::Wind].Caption.value(), QString());
        EXPECT_EQ(records().readings.WindSpeed, 5);
        cycle();
        EXPECT_FALSE(unsafe());
        EXPECT_EQ(codes(), QString());
    }
    cycleWithoutStation(180); // at the limit
    EXPECT_EQ(status(), u"Weather Station Data - 180s old"_s);
    EXPECT_FALSE(unsafe());
}

TEST_F(StationInTheCycle, oneDeadInstrumentHidesNoStorm) {
    records().conditions.WSDataOldUnsafe.Value = 0;
    records().alarms.AlarmWS.Tag = stationPath(); // any file will do as its sound
    records().alarms.AlarmWS.Value = 1;
    for (ThreeLabels* directions : {&records().conditions.Direction[Quantity::Wind],
                                    &records().conditions.Direction[Quantity::Gust]})
        (*directions)[2].Caption = u"090  180  00"_s;
    ReadingDisplay& show = records().display;
    struct Case {
        const char* what;
        const char *from, *to; // of the page's text
        Quantity missing;      // cloud: none
        QString cause;
        bool old = true;
    };
    const QString kWind = u"Wind 45.0 mph, above 12.4"_s;
    const QString kGust = u"Gust 60.0 mph, above 12.4"_s;
    const QString kBoth = kWind + u"; "_s + kGust;
    const Case cases[] = {
        {"thermometer", ">C</td><td>12.0<", ">C</td><td>--<", Quantity::Temperature, kBoth},
        {"gust row", "<td>Gust</td>", "<td>Soil</td>", Quantity::Gust, kWind},
        {"wind row, and its unit", "<td>WindSpeed</td>", "<td>Soil</td>", Quantity::Wind, kGust},
        {"wind and its unit, empty cells", "<td>mph</td><td>45<", "<td></td><td><", Quantity::Wind,
         kGust},
        {"humidity with a decimal comma", "<td>58 %<", "<td>58,1 %<", Quantity::Humidity, kBoth},
        {"direction that is none", "<td>SE<", "<td>N/A<", Quantity::Cloud, kBoth, false},
        {"no direction", "<td>SE<", "<td><", Quantity::Cloud, kBoth, false},
    };
    StationPage storm;
    storm.wind = u"45"_s;
    storm.gust = u"60"_s;
    storm.direction = u"SE"_s;
    storm.speedUnit = u"mph"_s;
    for (const bool firstRead : {false, true}) {
        for (const Case& c : cases) {
            SCOPED_TRACE(testing::Message() << c.what << ", first read: " << firstRead);
            if (firstRead && qstrncmp(c.to, "<td>Soil", 8) == 0)
                continue; // a station without the instrument
            StopSession(*core_);
            QByteArray page = stationBytes(storm);
            if (!firstRead) {
                writeStationBytes(page);
                StartSession(*core_);
                clock_.advanceSeconds(10);
                page = stationBytes(storm);
            }
            ASSERT_TRUE(page.contains(c.from));
            writeStationBytes(page.replace(c.from, c.to));
            if (firstRead)
                StartSession(*core_);
            else
                RunReadCycle(*core_);
            EXPECT_TRUE(unsafe());
            EXPECT_EQ(timelessCause(), c.cause);
            EXPECT_EQ(codes(), c.old ? u"a41"_s : QString());
            EXPECT_EQ(records().readings.StationDataOld, c.old);
            EXPECT_EQ(records().readings.AlarmSoundId, c.old ? u"10"_s : QString());
            EXPECT_EQ(status(), c.old ? u"Weather Station Data - value missing or not a number"_s
                                      : u"Weather Station Data - Refreshed"_s);
            EXPECT_EQ(records().readings.SpeedUnit, SpeedCode::MilesPerHour);
            for (const auto& [quantity, header] : {std::pair{Quantity::Wind, Quantity::Wind},
                                                   {Quantity::Gust, Quantity::Gust},
                                                   {Quantity::Temperature, Quantity::Temperature},
                                                   {Quantity::Humidity, Quantity::Humidity}}) {
                const bool missing = quantity == c.missing;
                EXPECT_EQ(records().readings.Condition[quantity] == 0, missing);
                EXPECT_EQ(show.LCond[quantity].Caption.value().isEmpty(), missing);
                EXPECT_EQ(show.Label0[header].ForeColor.value(), missing ? kRed : kCyan);
            }
            EXPECT_EQ(records().readings.Condition[Quantity::Dew] == 0,
                      c.missing == Quantity::Temperature);
            EXPECT_EQ(show.LValWindDir.Caption.value(), c.old ? u"135.0"_s : QString());
            EXPECT_EQ(show.Label0Direction.ForeColor.value(), c.old ? kCyan : kYellow);
        }
    }
    cycle();
    EXPECT_EQ(cause().section(u';', 0, 0), u"All conditions safe"_s);
    EXPECT_EQ(codes(), QString());
}

TEST_F(StationInTheCycle, whatIsNotJudgedIsSaid) {
    StationPage page;
    page.wind = u"105"_s;
    StartSession(*core_);
    cycle(page);
    EXPECT_FALSE(unsafe());
    EXPECT_EQ(
        cause(),
        u"All other conditions safe; nearest: dew-point spread 8.0 °C, unsafe at 3; Wind 105.0 "
        "km/h is beyond the last limit and is not judged"_s);
    CheckBox& hot = records().conditions.Cond[Quantity::Temperature][2];
    hot.Value = 0;
    page.temperature = u"99"_s;
    page.dewPoint = u"-1.25"_s;
    page.speedUnit = u"m/s"_s;
    cycle(page);
    EXPECT_EQ(cause(), u"All other conditions safe; nearest: humidity 58 of 90 %; Wind 105.0 m/s, "
                       "Dew-point spread 100.3 °C are beyond the last limit and are not judged"_s);
    records().conditions.BeyondLimitUnsafe.Value = 1;
    hot.Value = 1;
    records().conditions.Limit[Quantity::Gust][0].Value = 30;
    cycle(page);
    EXPECT_TRUE(unsafe());
    EXPECT_EQ(timelessCause(),
              u"Temperature 99.0 °C, above 50; Wind 105.0 m/s, beyond the last limit; Dew-point "
              "spread 100.3 °C, beyond the last limit; Limits of Gust are not in order"_s);
}

// Its text and whether it is shown as unsafe, which a level outside its sector is not.
TEST_F(StationInTheCycle, levelsAreShownAsTheyAreJudged) {
    ReadingDisplay& show = records().display;
    records().conditions.Direction[Quantity::Wind][1].Caption = u"090  180  00"_s;
    records().conditions.Direction[Quantity::Gust][1].Caption = u"000  000  00"_s;
    const auto sky = [](const char* member, int level) {
        return [member, level](StationPage&, ScriptedSensor& sensor) {
            sensor.values[QLatin1String(member)] = level;
        };
    };
    const auto page = [](QString StationPage::*field, const char* text) {
        return [field, text](StationPage& page, ScriptedSensor&) {
            page.*field = QLatin1String(text);
        };
    };
    const auto dew = [](const char* temperature, const char* dewPoint) {
        return [temperature, dewPoint](StationPage& page, ScriptedSensor&) {
            page.temperature = QLatin1String(temperature);
            page.dewPoint = QLatin1String(dewPoint);
        };
    };
    const struct {
        Quantity quantity;
        std::function<void(StationPage&, ScriptedSensor&)> change;
        QString text;
        Colour colour;
    } cases[] = {
        {Quantity::Cloud, sky("Condition_Cloud", 3), u"Overcast"_s, kOrange},
        {Quantity::Rain, sky("Condition_Rain", 0), u"Unknown"_s, kYellow},
        {Quantity::Brightness, sky("Condition_Brightness", 3), u"Very Light"_s, kOrange},
        {Quantity::Brightness, sky("Condition_Brightness", 2), u"Light"_s, kYellow},
        {Quantity::Wind, page(&StationPage::wind, "15"), u"Windy"_s, kYellow},
        {Quantity::Gust, page(&StationPage::gust, "15"), u"Gusty"_s, kOrange},
        {Quantity::Wind, page(&StationPage::wind, "120"), u"Unknown"_s, kYellow},
        {Quantity::Temperature, page(&StationPage::temperature, "--"), {}, kYellow},
        {Quantity::Humidity, page(&StationPage::humidity, "95 %"), u"Very Humid"_s, kOrange},
        // Of the texts as they are shown: 8.3 - 5.3 is 3.0000000000000009 in binary.
        {Quantity::Dew, dew("8.3", "5.3"), u"Condensation"_s, kOrange},
        {Quantity::Dew, dew("-1.0", "1"), u"Condensation"_s, kOrange},
        {Quantity::Dew, dew("12.04", "9.0"), u"Condensation"_s, kOrange},
        {Quantity::Dew, dew("12.1", "9.0"), u"Humid"_s, kYellow},
        {Quantity::Dew, dew("14.6", "9.5"), u"Fine"_s, kYellow},
        {Quantity::Dew, dew("---", "9.5"), {}, kYellow},
        {Quantity::Dew, dew("12.0", ""), {}, kYellow},
    };
    StartSession(*core_);
    const ScriptedSensor clear = sensor_;
    for (const auto& [quantity, change, text, colour] : cases) {
        SCOPED_TRACE(testing::Message() << static_cast<int>(quantity) << text.toStdString());
        StationPage changed;
        sensor_.values = clear.values;
        change(changed, sensor_);
        cycle(changed);
        EXPECT_EQ(show.LCond[quantity].Caption.value(), text);
        EXPECT_EQ(show.LCond[quantity].ForeColor.value(), colour);
    }
    // Where the user wants it so, a value beyond the last limit is shown as unsafe. Without a file
    // the texts are gone, and the levels stay.
    records().conditions.BeyondLimitUnsafe.Value = 1;
    cycle({.wind = u"120"_s});
    EXPECT_EQ(show.LCond[Quantity::Wind].ForeColor.value(), kOrange);
    cycle({.gust = u"15"_s});
    QFile::remove(stationPath());
    cycleWithoutStation();
    EXPECT_EQ(show.LCond[Quantity::Gust].Caption.value(), QString());
    EXPECT_EQ(show.LCond[Quantity::Gust].ForeColor.value(), kOrange);
    EXPECT_EQ(records().readings.Condition[Quantity::Gust], WindWindy);

    // A date that cannot be read leaves the last one.
    QByteArray undated = stationBytes({});
    writeStationBytes(undated.replace("/11/2026", "/--/2026"));
    const QString before = show.LblWSValue[0].Caption;
    cycleWithoutStation();
    EXPECT_EQ(show.LblWSValue[0].Caption.value(), before);
}

TEST_F(StationInTheCycle, fileLeftFromAnotherDayIsNotTakenForNew) {
    clock_.advanceSeconds(24 * 3600);
    StartSession(*core_);
    EXPECT_TRUE(unsafe());
    EXPECT_EQ(codes(), u"a41"_s);
    cycle();
    EXPECT_FALSE(unsafe());
}

TEST_F(StationInTheCycle, displayFollowsTheStationsUnits) {
    StartSession(*core_);
    sensor_.takeCalls();
    StationPage page;
    page.temperatureUnit = u"F"_s;
    page.speedUnit = u"mph"_s;
    page.temperature = u"50.0"_s;
    page.dewPoint = u"40.0"_s;
    cycle(page);
    EXPECT_EQ(records().units.UnitsTemp.Index, 1);
    EXPECT_EQ(records().units.UnitsSpeed.Index, 1);
    EXPECT_TRUE(sensor_.calls.contains(u"Kiv_TemperatureUnits=(s F)"_s));
    EXPECT_EQ(records().conditions.Limit[Quantity::Temperature][0].Value, 23);
    EXPECT_EQ(records().conditions.Limit[Quantity::Dew][0].Value, 5);
    EXPECT_NEAR(records().conditions.Limit[Quantity::Wind][0].Value, 6.2137, 0.001);
}

} // namespace
} // namespace skyhold
