// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/clients.h"
#include "core/state_document.h"
#include "support/core_fixture.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {
namespace {

// What the station's values become over whole cycles: levels, texts, causes and the verdict.
class StationInTheCycle : public CoreFixture {
  protected:
    QString timelessCause() {
        static const QRegularExpression since(u", since [0-9:]+"_s);
        return cause().remove(since);
    }
};

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
        {"wind and its unit, empty cells", "<td>mph</td><td>45<", "<td></td><td><", Quantity::Wind,
         kGust},
        {"humidity with a decimal comma", "<td>58 %<", "<td>58,1 %<", Quantity::Humidity, kBoth},
        {"direction that is none", "<td>SE<", "<td>N/A<", Quantity::Cloud, kBoth, false},
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
            for (const Quantity quantity :
                 {Quantity::Wind, Quantity::Gust, Quantity::Temperature, Quantity::Humidity}) {
                const bool missing = quantity == c.missing;
                EXPECT_EQ(records().readings.Condition[quantity] == 0, missing);
                EXPECT_EQ(show.LCond[quantity].Caption.value().isEmpty(), missing);
                EXPECT_EQ(show.Label0[quantity].ForeColor.value(), missing ? kRed : kCyan);
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
        "km/hr is beyond the last limit and is not judged"_s);
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
    const struct {
        Quantity quantity;
        StationPage page;
        QString text;
        Colour colour;
    } cases[] = {
        {Quantity::Cloud, {}, u"Overcast"_s, kOrange},
        {Quantity::Wind, {.wind = u"15"_s}, u"Windy"_s, kYellow},
        {Quantity::Gust, {.gust = u"15"_s}, u"Gusty"_s, kOrange},
        {Quantity::Wind, {.wind = u"120"_s}, u"Unknown"_s, kYellow},
        {Quantity::Temperature, {.temperature = u"--"_s}, {}, kYellow},
        // Of the texts as they are shown: 8.3 - 5.3 is 3.0000000000000009 in binary.
        {Quantity::Dew,
         {.temperature = u"8.3"_s, .dewPoint = u"5.3"_s},
         u"Condensation"_s,
         kOrange},
        {Quantity::Dew, {.temperature = u"-1.0"_s, .dewPoint = u"1"_s}, u"Condensation"_s, kOrange},
        {Quantity::Dew, {.dewPoint = {}}, {}, kYellow},
    };
    sensor_.values[u"Condition_Cloud"_s] = 3;
    StartSession(*core_);
    for (const auto& [quantity, page, text, colour] : cases) {
        SCOPED_TRACE(testing::Message() << static_cast<int>(quantity) << text.toStdString());
        cycle(page);
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

class StateDocument : public CoreFixture {
  protected:
    QJsonObject document() { return stateDocument(*core_); }
    // "session verdict safe wait" and the causes as "kind:name text".
    QStringList said() {
        const QJsonObject state = document();
        QStringList words{u"%1 %2 %3 %4"_s.arg(state[u"session"_s].toString(),
                                               state[u"verdict"_s].toString(),
                                               state[u"safe"_s].toBool() ? u"SAFE"_s : u"-"_s,
                                               QString::number(state[u"wait_s"_s].toInt()))};
        for (const QJsonValue& cause : state[u"causes"_s].toArray())
            words += u"%1:%2 %3"_s.arg(cause[u"kind"_s].toString(), cause[u"name"_s].toString(),
                                       cause[u"text"_s].toString());
        return words;
    }
};

TEST_F(StateDocument, saysWhetherItIsSafeAndWhy) {
    records().conditions.SafeDelayVal.Value = 30;
    EXPECT_EQ(said(),
              (QStringList{u"idle none - 0"_s, u"session: No monitoring session is running"_s}));
    StartSession(*core_);
    EXPECT_EQ(said(), QStringList{u"running safe SAFE 0"_s});
    EXPECT_EQ(document()[u"nearest"_s][u"text"_s].toString(),
              u"nearest: dew-point spread 8.0 °C, unsafe at 3"_s);

    // The wind has to have blown for a minute.
    cycle({.wind = u"23.4"_s}, 60);
    const QString windy = u"level:wind Wind 23.4 km/h, above 20, since 22:01:00"_s;
    EXPECT_EQ(said(), (QStringList{u"running unsafe - 0"_s, windy}));
    const QJsonObject cause{{u"kind"_s, u"level"_s},
                            {u"name"_s, u"wind"_s},
                            {u"level"_s, 3},
                            {u"label"_s, u"Very Windy"_s},
                            {u"value"_s, 23.4},
                            {u"unit"_s, u"km/h"_s},
                            {u"limit"_s, 20},
                            {u"relation"_s, u">"_s},
                            {u"since"_s, clock_.now().toUTC().toString(Qt::ISODate)},
                            {u"text"_s, windy.section(u' ', 1)}};
    EXPECT_EQ(QJsonDocument(document()[u"causes"_s][0].toObject()).toJson().toStdString(),
              QJsonDocument(cause).toJson().toStdString());
    sensor_.values[u"Condition_Rain"_s] = 2;
    cycle({.wind = u"23.4"_s});
    EXPECT_EQ(said(), (QStringList{u"running unsafe - 0"_s,
                                   u"level:rain Rain: Wet at 2850, since 22:01:10"_s, windy}));
    sensor_.values[u"Condition_Rain"_s] = 1;
    cycle({.temperature = u"-5"_s, .dewPoint = u"-7.5"_s});
    EXPECT_EQ(
        said(),
        (QStringList{u"running unsafe - 0"_s,
                     u"level:dew_spread Dew-point spread 2.5 °C, not above 3, since 22:01:20"_s,
                     u"level:temperature Temperature -5.0 °C, not above -5, since 22:01:20"_s}));
    cycle();
    EXPECT_EQ(said(), (QStringList{u"running waiting - 30"_s,
                                   u"delay: Safe in 30 s; last reset by Dew point at 22:01:20"_s}));
    cycle({}, 30);
    EXPECT_EQ(said(), QStringList{u"running safe SAFE 0"_s});

    cycleWithoutStation(300);
    EXPECT_EQ(said(), (QStringList{u"running unsafe - 0"_s,
                                   u"source:station Station data 300 s old, more than 180, since "
                                   u"22:07:00"_s}));
    EXPECT_EQ(document()[u"sources"_s][u"station"_s][u"state"_s], u"old"_s);
    EXPECT_EQ(document()[u"codes"_s].toArray(), QJsonArray{u"a41"_s});
    sensor_.answering = false;
    cycle();
    EXPECT_EQ(said(), (QStringList{u"running unsafe - 0"_s,
                                   u"source:sensor Kiv_Nubilo has failed, since 22:07:10"_s}));
    EXPECT_TRUE(document()[u"readings"_s][u"cloud"_s][u"value"_s].isNull());
    EXPECT_EQ(document()[u"roof"_s][u"state"_s], u"unknown"_s);
    StopSession(*core_);
    EXPECT_EQ(said()[0], u"idle none - 0"_s);
}

TEST_F(StateDocument, isNotSafeWhenAClientOrAGapSaysSo) {
    int changes = 0;
    core_->stateChanged = [&changes] {
        ++changes;
    };
    StartSession(*core_);
    EXPECT_EQ(changes, 2); // starting, running
    core_->caller = u":1.7"_s;
    HasControl(*core_, true, u"Dome"_s);
    setVerdict(*core_, true);
    const QStringList byClient{u"running unsafe - 0"_s, u"control: Unsafe by Dome"_s};
    EXPECT_EQ(said(), byClient) << "before the next cycle as after it";
    EXPECT_EQ(document()[u"decided_by"_s], u"client"_s);
    cycle();
    EXPECT_EQ(said(), byClient);
    EXPECT_EQ(document()[u"controller"_s], u"Dome"_s);
    setVerdict(*core_, false);
    EXPECT_EQ(said(), QStringList{u"running safe SAFE 0"_s});
    HasControl(*core_, false, {});
    EXPECT_EQ(changes, 4);

    distrustAfterGap(*core_);
    EXPECT_EQ(said(), (QStringList{u"running unsafe - 0"_s,
                                   u"session: There have been no readings for a while"_s}));
    EXPECT_EQ(changes, 5);
}

TEST_F(StateDocument, whatEndsAWaitIsNoWait) {
    records().conditions.SafeDelayVal.Value = 30;
    StartSession(*core_);
    const auto wait = [this] {
        cycle({.temperature = u"-5"_s});
        cycle();
        ASSERT_EQ(said()[0], u"running waiting - 30"_s);
        EXPECT_EQ(records().session.verdict.value(), Verdict::Waiting);
    };
    wait();
    distrustAfterGap(*core_);
    EXPECT_EQ(said()[0], u"running unsafe - 0"_s);
    EXPECT_EQ(records().session.verdict.value(), Verdict::Unsafe);

    wait();
    core_->caller = u":1.7"_s;
    HasControl(*core_, true, u"Dome"_s);
    setVerdict(*core_, true);
    EXPECT_EQ(said()[0], u"running unsafe - 0"_s);
    EXPECT_EQ(records().session.verdict.value(), Verdict::Unsafe);
}

} // namespace
} // namespace skyhold
