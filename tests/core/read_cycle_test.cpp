#include "support/core_fixture.h"

namespace skyhold {
namespace {

using ReadCycle = CoreFixture;

TEST_F(ReadCycle, sensorProgramSeesItsCallsInOrder) {
    StartSession(*core_);
    const QStringList start = sensor_.takeCalls();
    const QStringList opening{u"Version"_s,
                              u"Kiv_DeviceRole"_s,
                              u"Kiv_DeviceSwitchCtrl=(b true)"_s,
                              u"Kiv_LocalControl(b true, s Kiv_Skyhold has control)"_s,
                              u"Device_Start"_s,
                              u"DataReady"_s,
                              u"DataReady"_s};
    EXPECT_EQ(start.first(opening.size()), opening);

    // No description of the level is asked for twice, and the verdict goes out by reference as a
    // boolean, the switch as a double.
    const QStringList expected{u"Kiv_TemperatureUnits"_s, u"Condition_Cloud"_s,
                               u"Condition_Rain"_s,       u"Condition_Brightness"_s,
                               u"SkyTemperature"_s,       u"RainValue"_s,
                               u"BrightnessValue"_s,      u"SkySensorTemperature"_s,
                               u"AmbientTemperature"_s,   u"SkySensorTemperature"_s,
                               u"RainHeaterPercent"_s,    u"RainHeaterTemperature"_s,
                               u"RainHeaterStatus"_s,     u"LastReading"_s,
                               u"DeviceIsRunning"_s,      u"Kiv_XFERFileErr"_s,
                               u"DescriptionClear"_s,     u"DescriptionDry"_s,
                               u"DescriptionDark"_s,      u"SetUnSafe(b false)"_s,
                               u"Kiv_SetSwitch(d 1)"_s,   u"DataReady"_s};
    EXPECT_EQ(start.sliced(opening.size()), expected);
    cycle();
    EXPECT_EQ(sensor_.takeCalls(), expected);

    StopSession(*core_);
    EXPECT_EQ(sensor_.takeCalls(),
              (QStringList{u"Kiv_LocalControl(b false, s )"_s, u"released"_s}));
}

TEST_F(ReadCycle, otherRoleIsAskedForItsSwitch) {
    sensor_.values[u"Kiv_DeviceRole"_s] = u"SLAVE"_s;
    StartSession(*core_);
    const QStringList calls = sensor_.takeCalls();
    EXPECT_FALSE(calls.contains(u"Kiv_DeviceSwitchCtrl=(b true)"_s));
    EXPECT_TRUE(calls.contains(u"SwitchStatus"_s));
    EXPECT_EQ(records().readings.SwitchValue, 2);
    EXPECT_EQ(records().session.SWRole.Index, 1);
    EXPECT_FALSE(records().display.LValSwitch.Visible);
    EXPECT_TRUE(records().alarms.AlarmNB.Visible);
    EXPECT_EQ(records().alarms.TimeoutAlarmCaption.Caption.value(), u"Timeout Alarm"_s);
}

TEST_F(ReadCycle, switchIsLeftAloneUntilTheRoleCanBeRead) {
    StartSession(*core_);
    StopSession(*core_);
    const auto drives = [this] {
        return sensor_.takeCalls().contains(u"Kiv_SetSwitch(d 1)"_s);
    };
    EXPECT_TRUE(drives());
    sensor_.failing = QStringList{u"Kiv_DeviceRole"_s};
    StartSession(*core_);
    cycle();
    EXPECT_FALSE(drives());
    EXPECT_FALSE(unsafe());
    EXPECT_FALSE(records().display.LValSwitch.Visible);
    EXPECT_EQ(records().session.SWRole.Index, 0) << "the user's choice for a master stays";
    sensor_.failing.clear();
    cycle();
    EXPECT_TRUE(sensor_.calls.contains(u"Kiv_DeviceSwitchCtrl=(b true)"_s));
    EXPECT_TRUE(drives());
}

TEST_F(ReadCycle, showsValuesConditionsAndVerdict) {
    StartSession(*core_);
    const ReadingDisplay& show = records().display;
    const struct {
        const Label& label;
        QString text;
        Colour colour;
    } cases[] = {
        {show.LVal[Quantity::Cloud], u"-25.3"_s, kGreen},
        {show.LVal[Quantity::Rain], u"2850"_s, kGreen},
        {show.LVal[Quantity::Brightness], u"61"_s, kGreen},
        {show.LVal[Quantity::Temperature], u"12.0"_s, kGreen},
        {show.LVal[Quantity::Wind], u"5"_s, kGreen},
        {show.LValWindDir, u"0.0"_s, kGreen},
        {show.LCond[Quantity::Cloud], u"Clear"_s, kYellow},
        {show.LCond[Quantity::Temperature], u"Fine"_s, kYellow},
        {show.LCond[Quantity::Dew], u"Fine"_s, kYellow},
        {show.LCond[Quantity::Humidity], u"Fine"_s, kYellow},
        {show.Label3Station, u"16/11 22:00:00"_s, kGreen},
        {show.Label3Sensor, u"16/11 12:00:00"_s, kGreen},
        {show.LValSwitch, u"Opened"_s, kGreen},
        {records().conditions.LblStatus, u"Safe"_s, 0},
        {records().session.Statusbar1, u"Weather Station Data - Refreshed"_s, kNavy},
    };
    for (const auto& [label, text, colour] : cases) {
        EXPECT_EQ(label.Caption.value(), text);
        EXPECT_EQ(label.ForeColor.value(), colour) << qPrintable(text);
    }
    EXPECT_EQ(cause(), u"All conditions safe"_s);

    rainCycle(3);
    EXPECT_TRUE(unsafe());
    EXPECT_EQ(cause(), u"Rain: Rain"_s);
    EXPECT_EQ(show.LCond[Quantity::Rain].ForeColor.value(), kOrange);
    EXPECT_EQ(show.LValSwitch.Caption.value(), u"Closed"_s);
    EXPECT_EQ(show.LValSwitch.ForeColor.value(), kRed);
    EXPECT_TRUE(sensor_.calls.contains(u"SetUnSafe(b true)"_s));
    EXPECT_TRUE(sensor_.calls.contains(u"Kiv_SetSwitch(d 2)"_s));
}

TEST_F(ReadCycle, failingSensorProgramIsUnsafeUntilItRecovers) {
    StartSession(*core_);
    const ScriptedSensor well = sensor_;
    const auto answers = [this](const QString& name, const QVariant& value) {
        return std::function([this, name, value] { sensor_.values[name] = value; });
    };
    const auto fails = [this](const QString& name) {
        return std::function([this, name] { sensor_.failing = {name}; });
    };
    const struct {
        const char* what;
        std::function<void()> fail;
        bool late = false; // after the cycle's test, so that the next cycle reports it
    } cases[] = {
        {"not running", answers(u"DeviceIsRunning"_s, false)},
        {"transfer file error", answers(u"Kiv_XFERFileErr"_s, true)},
        {"no answers",
         [&] {
             sensor_.answering = false;
         }},
        {"no number", answers(u"SkyTemperature"_s, qQNaN())},
        {"wrong type", answers(u"Condition_Rain"_s, u"perhaps"_s)},
        {"hangs",
         [&] {
             sensor_.state = ObjectState::Hanging;
         }},
        {"gone",
         [&] {
             sensor_.state = ObjectState::Gone;
             sensor_.present = false;
         }},
        {"no verdict taken", fails(u"SetUnSafe"_s), true},
        {"no switch driven", fails(u"Kiv_SetSwitch"_s), true},
        {"no description", fails(u"DescriptionClear"_s), true},
        {"no word of its data",
         [&] {
             sensor_.onCall = [this](const QString& name) {
                 sensor_.answering = name != u"DataReady"_s;
             };
         },
         true},
        {"no position of the switch",
         [&] {
             sensor_.failing = QStringList{u"SwitchStatus"_s};
             records().session.SwitchControl = false;
         },
         true},
    };
    const ReadingDisplay& show = records().display;
    for (const auto& [what, fail, late] : cases) {
        SCOPED_TRACE(what);
        fail();
        cycle();
        EXPECT_EQ(unsafe(), !late);
        for (int again = 0; again < 3; ++again) {
            if (again > 0 || late)
                cycle();
            EXPECT_TRUE(unsafe()) << again;
            EXPECT_EQ(codes(), u"a31"_s);
            EXPECT_EQ(status(), u"Error with Kiv_Nubilo"_s);
            EXPECT_EQ(show.SensorStatus.Caption.value(), u"NB error"_s);
            EXPECT_EQ(show.LVal[Quantity::Cloud].Caption.value(), QString());
            EXPECT_EQ(records().display.Label0[Quantity::Cloud].ForeColor.value(), kRed);
            EXPECT_EQ(records().readings.ReadLedColour, kYellow);
            EXPECT_EQ(SecondsSinceGoodData(records().readings), 1000);
        }

        sensor_.values = well.values;
        sensor_.failing.clear();
        sensor_.onCall = nullptr;
        sensor_.answering = sensor_.present = true;
        sensor_.state = ObjectState::Ready;
        cycle();
        cycle();
        EXPECT_FALSE(unsafe());
        EXPECT_EQ(codes(), QString());
        EXPECT_EQ(show.LCond[Quantity::Rain].Caption.value(), u"Dry"_s);
        EXPECT_EQ(SecondsSinceGoodData(records().readings), 3);
    }
    EXPECT_EQ(sensor_.created, 2); // the one that had gone was taken up again
}

// It may go on under another sky, so that only what closes the roof is left for it.
TEST_F(ReadCycle, programThatHangsIsSentWhatClosesAlone) {
    records().conditions.NBDataOldUnsafe.set(0);
    StartSession(*core_);
    sensor_.state = ObjectState::Hanging;
    sensor_.takeCalls();
    cycle();
    EXPECT_FALSE(unsafe());
    EXPECT_EQ(sensor_.takeCalls(), QStringList());
    StationPage page;
    page.humidity = u"95 %"_s;
    cycle(page);
    EXPECT_TRUE(unsafe());
    EXPECT_EQ(sensor_.takeCalls(), (QStringList{u"SetUnSafe(b true)"_s, u"Kiv_SetSwitch(d 2)"_s}));
    StopSession(*core_);
    EXPECT_EQ(sensor_.takeCalls().value(0), u"Kiv_LocalControl(b false, s )"_s);
}

TEST_F(ReadCycle, stationFileThatCannotBeTrustedIsUnsafeUntilItIsWhole) {
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

TEST_F(ReadCycle, oneDeadInstrumentHidesNoStorm) {
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
    const Case cases[] = {
        {"thermometer", ">C</td><td>12.0<", ">C</td><td>--<", Quantity::Temperature,
         u"Wind: Very Windy, Gust: Very Gusty"_s},
        {"gust row", "<td>Gust</td>", "<td>Soil</td>", Quantity::Gust, u"Wind: Very Windy"_s},
        {"wind row, and its unit", "<td>WindSpeed</td>", "<td>Soil</td>", Quantity::Wind,
         u"Gust: Very Gusty"_s},
        {"wind and its unit, empty cells", "<td>mph</td><td>45<", "<td></td><td><", Quantity::Wind,
         u"Gust: Very Gusty"_s},
        {"humidity with a decimal comma", "<td>58 %<", "<td>58,1 %<", Quantity::Humidity,
         u"Wind: Very Windy, Gust: Very Gusty"_s},
        {"direction that is none", "<td>SE<", "<td>N/A<", Quantity::Cloud,
         u"Wind: Very Windy, Gust: Very Gusty"_s, false},
        {"no direction", "<td>SE<", "<td><", Quantity::Cloud,
         u"Wind: Very Windy, Gust: Very Gusty"_s, false},
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
            EXPECT_EQ(cause(), c.cause);
            EXPECT_EQ(codes(), c.old ? u"a41"_s : QString());
            EXPECT_EQ(records().readings.StationDataOld, c.old);
            EXPECT_EQ(records().readings.AlarmSoundId, c.old ? u"10"_s : QString());
            EXPECT_EQ(status(), c.old ? u"Weather Station Data - value missing or not a number"_s
                                      : u"Weather Station Data - Refreshed"_s);
            EXPECT_EQ(records().readings.SpeedUnit, u"M"_s);
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
    EXPECT_EQ(cause(), u"All conditions safe"_s);
    EXPECT_EQ(codes(), QString());
}

TEST_F(ReadCycle, whatIsNotJudgedIsSaid) {
    StationPage page;
    page.wind = u"105"_s;
    StartSession(*core_);
    cycle(page);
    EXPECT_FALSE(unsafe());
    EXPECT_EQ(cause(),
              u"All other conditions safe, Wind 105.0 km/h is beyond the last limit and is not "
              "judged"_s);
    records().conditions.BeyondLimitUnsafe.Value = 1;
    records().conditions.Limit[Quantity::Gust][0].Value = 30;
    cycle(page);
    EXPECT_TRUE(unsafe());
    EXPECT_EQ(cause(), u"Wind: beyond the last limit, Limits of Gust are not in order"_s);
}

TEST_F(ReadCycle, aSessionRemembersNothingOfTheOneBefore) {
    records().conditions.Cond[Quantity::Cloud][1].Value = 1;
    StartSession(*core_);
    cycle();
    EXPECT_FALSE(unsafe());
    StopSession(*core_);

    // A station without a gust sensor from now on, under a sky that is cloudy already.
    clock_.advanceSeconds(10);
    QByteArray page = stationBytes({});
    page.replace("<td>Gust</td>", "<td>Soil</td>");
    writeStationBytes(page);
    sensor_.values[u"Condition_Cloud"_s] = 2;
    StartSession(*core_);
    EXPECT_EQ(codes(), QString()) << status().toStdString();
    EXPECT_TRUE(unsafe()) << "clouds of before the session are not waited for";
}

TEST_F(ReadCycle, fileLeftFromAnotherDayIsNotTakenForNew) {
    clock_.advanceSeconds(24 * 3600);
    StartSession(*core_);
    EXPECT_TRUE(unsafe());
    EXPECT_EQ(codes(), u"a41"_s);
    cycle();
    EXPECT_FALSE(unsafe());
}

TEST_F(ReadCycle, displayFollowsTheStationsUnits) {
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

TEST_F(ReadCycle, safeIsHeldBackByTheDelay) {
    records().conditions.SafeDelayVal.Value = 25;
    StartSession(*core_);
    rainCycle(2);
    EXPECT_TRUE(unsafe());
    sensor_.values[u"Condition_Rain"_s] = 1;
    for (const int left : {25, 15, 5}) {
        cycle();
        EXPECT_TRUE(unsafe());
        EXPECT_EQ(records().conditions.SafeDelayMsg.Caption.value(),
                  u"SAFE condition delayed by %1 s"_s.arg(left));
    }
    // The time of day may jump meanwhile without ending the wait.
    clock_.setTimeOfDay(clock_.now().addSecs(-3600));
    cycle({}, 1);
    EXPECT_TRUE(unsafe());
    cycle();
    EXPECT_FALSE(unsafe());
    EXPECT_EQ(records().conditions.SafeDelayMsg.Caption.value(), QString());

    rainCycle(2);
    rainCycle(1);
    EXPECT_TRUE(unsafe());
    StopSession(*core_);
    StartSession(*core_);
    EXPECT_FALSE(unsafe()) << "a new session forgets the wait";
}

TEST_F(ReadCycle, strongWindCountsAMinuteAfterTheSessionBegan) {
    StationPage page;
    page.wind = u"15"_s;
    StartSession(*core_);
    for (const bool expected : {false, false, false, false, false, true}) {
        cycle(page);
        EXPECT_EQ(unsafe(), expected);
    }
}

TEST_F(ReadCycle, weatherFileFollowsAndItsFailureIsTold) {
    StartSession(*core_);
    QFile file(folder_->filePath(u"Kiv_CCDAP4_II.dat"_s));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray record = file.readAll();
    EXPECT_EQ(record.size(), 100);
    EXPECT_EQ(record.mid(23, 4), "C K ");
    EXPECT_EQ(record.mid(74, 6), "00003 ");
    records().ccdap.LblPathNameCCDAP4.Caption = folder_->filePath(u"gone"_s);
    cycle();
    EXPECT_EQ(codes(), u"c51"_s);
}

TEST_F(ReadCycle, lampsAlternateAndGoOutAtTheEnd) {
    StartSession(*core_);
    const LampPair& lamps = records().display.LEDRead;
    EXPECT_EQ(lamps.first.FillColor, kGreen);
    EXPECT_EQ(lamps.second.FillColor, kGrey);
    cycle();
    EXPECT_EQ(lamps.first.FillColor, kGrey);
    EXPECT_EQ(lamps.second.FillColor, kGreen);
    StopSession(*core_);
    EXPECT_EQ(lamps.first.FillColor, kGrey);
    EXPECT_EQ(lamps.second.FillColor, kGrey);
}

} // namespace
} // namespace skyhold
