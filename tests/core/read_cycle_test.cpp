// SPDX-License-Identifier: GPL-3.0-or-later
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
    // Until it has said so, its data is not ready.
    sensor_.onCall = [this](const QString& name) {
        EXPECT_TRUE(name == u"DataReady"_s || !records().readings.SensorDataReady)
            << qPrintable(name);
    };
    cycle();
    sensor_.onCall = {};
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

} // namespace
} // namespace skyhold
