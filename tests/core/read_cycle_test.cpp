#include "support/core_fixture.h"

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

class ReadCycle : public CoreFixture {};

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

TEST_F(ReadCycle, showsValuesConditionsAndVerdict) {
    StartSession(*core_);
    const ReadingDisplay& show = records().display;
    const struct {
        const Label& label;
        QString text;
        Colour colour;
    } cases[] = {
        {show.LValCloud, u"-25.3"_s, kGreen},
        {show.LValRain, u"2850"_s, kGreen},
        {show.LValBrightness, u"61"_s, kGreen},
        {show.LValTemperature, u"12.0"_s, kGreen},
        {show.LValWindSpeed, u"5"_s, kGreen},
        {show.LValWindDir, u"0.0"_s, kGreen},
        {show.LCondCloud, u"Clear"_s, kYellow},
        {show.LCondTemp, u"Fine"_s, kYellow},
        {show.LCondDewPoint, u"Fine"_s, kYellow},
        {show.LCondHumidity, u"Fine"_s, kYellow},
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
    EXPECT_EQ(show.LblCause.Caption.value(), u"All conditions safe"_s);

    sensor_.values[u"Condition_Rain"_s] = 3;
    cycle();
    EXPECT_TRUE(unsafe());
    EXPECT_EQ(show.LblCause.Caption.value(), u"Rain: Rain"_s);
    EXPECT_EQ(show.LCondRain.ForeColor.value(), kOrange);
    EXPECT_EQ(show.LValSwitch.Caption.value(), u"Closed"_s);
    EXPECT_EQ(show.LValSwitch.ForeColor.value(), kRed);
    EXPECT_TRUE(sensor_.calls.contains(u"SetUnSafe(b true)"_s));
    EXPECT_TRUE(sensor_.calls.contains(u"Kiv_SetSwitch(d 2)"_s));
}

TEST_F(ReadCycle, failingSensorProgramIsUnsafeUntilItRecovers) {
    StartSession(*core_);
    const struct {
        const char* what;
        std::function<void()> fail;
        std::function<void()> mend;
    } cases[] = {
        {"not running", [&] { sensor_.values[u"DeviceIsRunning"_s] = false; },
         [&] {
             sensor_.values[u"DeviceIsRunning"_s] = true;
         }},
        {"transfer file error", [&] { sensor_.values[u"Kiv_XFERFileErr"_s] = true; },
         [&] {
             sensor_.values[u"Kiv_XFERFileErr"_s] = false;
         }},
        {"no answers", [&] { sensor_.answering = false; },
         [&] {
             sensor_.answering = true;
         }},
        {"no number", [&] { sensor_.values[u"SkyTemperature"_s] = qQNaN(); },
         [&] {
             sensor_.values[u"SkyTemperature"_s] = -25.25;
         }},
        {"wrong type", [&] { sensor_.values[u"Condition_Rain"_s] = u"perhaps"_s; },
         [&] {
             sensor_.values[u"Condition_Rain"_s] = 1;
         }},
        {"gone", [&] { sensor_.alive = sensor_.present = false; },
         [&] {
             sensor_.alive = sensor_.present = true;
         }},
    };
    for (const auto& [what, fail, mend] : cases) {
        fail();
        cycle();
        EXPECT_TRUE(unsafe()) << what;
        EXPECT_EQ(codes(), u"a31"_s) << what;
        EXPECT_EQ(status(), u"Error with Kiv_Nubilo"_s) << what;
        EXPECT_EQ(records().display.SensorStatus.Caption.value(), u"NB error"_s);
        EXPECT_EQ(records().display.LValCloud.Caption.value(), QString());
        EXPECT_EQ(records().display.header(Header::Cloud).ForeColor.value(), kRed);
        EXPECT_EQ(records().readings.ReadLedColour, kYellow);
        EXPECT_EQ(SecondsSinceGoodData(records().readings), 1000);

        mend();
        cycle();
        EXPECT_FALSE(unsafe()) << what;
        EXPECT_EQ(codes(), QString()) << what;
        EXPECT_EQ(records().display.LCondRain.Caption.value(), u"Dry"_s) << what;
        EXPECT_EQ(SecondsSinceGoodData(records().readings), 3);
    }
    EXPECT_EQ(sensor_.created, 2); // the one that had gone was taken up again
}

TEST_F(ReadCycle, stationFileThatCannotBeTrustedIsUnsafeUntilItIsWhole) {
    StartSession(*core_);
    const QByteArray page = [&] {
        QFile file(stationPath());
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }();
    const struct {
        const char* what;
        std::function<void()> break_;
        QString status;
        QString codes;
    } cases[] = {
        {"missing", [&] { QFile::remove(stationPath()); },
         u"Weather Station Data - file not available"_s, u"a42"_s},
        {"empty", [&] { writeStationBytes({}); }, u"Weather Station Data - no readings in file"_s,
         u"a41"_s},
        {"torn", [&] { writeStationBytes(page.first(page.size() / 2)); },
         u"Weather Station Data - no readings in file"_s, u"a41"_s},
        {"binary", [&] { writeStationBytes(QByteArray(5000, '\0') + page); },
         u"Weather Station Data - not a text file"_s, u"a41"_s},
        {"huge",
         [&] {
             writeStationBytes(page);
             QFile::resize(stationPath(), kStationFileLimit + 1);
         },
         u"Weather Station Data - file too large (over 16 MB)"_s, u"a41"_s},
    };
    for (const auto& [what, break_, text, code] : cases) {
        break_();
        clock_.advanceSeconds(10);
        RunReadCycle(*core_);
        EXPECT_EQ(status(), text) << what;
        EXPECT_EQ(codes(), code) << what;
        EXPECT_TRUE(unsafe()) << what;
        EXPECT_FALSE(records().readings.StationValid) << what;
        EXPECT_EQ(records().display.LValWindSpeed.Caption.value(), QString()) << what;
        EXPECT_EQ(records().readings.WindSpeed, 5) << what;
        cycle();
        EXPECT_FALSE(unsafe()) << what;
        EXPECT_EQ(codes(), QString()) << what;
    }
}

TEST_F(ReadCycle, stationThatStopsRewritingGrowsOld) {
    StartSession(*core_);
    clock_.advanceSeconds(180);
    RunReadCycle(*core_);
    EXPECT_EQ(status(), u"Weather Station Data - 180s old"_s);
    EXPECT_FALSE(unsafe());
    clock_.advanceSeconds(1);
    RunReadCycle(*core_);
    EXPECT_EQ(status(), u"Weather Station Data too old - 181s old"_s);
    EXPECT_EQ(codes(), u"a41"_s);
    EXPECT_TRUE(unsafe());
    EXPECT_EQ(records().display.WSAlarmMsg.Caption.value(), u"WS data too old"_s);
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
    EXPECT_EQ(records().conditions.LimitTemp[0].Value, 23);
    EXPECT_EQ(records().conditions.LimitDew[0].Value, 5);
    EXPECT_NEAR(records().conditions.LimitWind[0].Value, 6.2137, 0.001);
}

TEST_F(ReadCycle, safeIsHeldBackByTheDelay) {
    records().conditions.SafeDelayVal.Value = 25;
    StartSession(*core_);
    sensor_.values[u"Condition_Rain"_s] = 2;
    cycle();
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
