// SPDX-License-Identifier: GPL-3.0-or-later
// Members with rules of their own.
#include "automation/form_members.h"
#include "nubilo_fixture.h"

namespace skyhold {
namespace {

using OddMembers = NubiloFixture;

TEST_F(OddMembers, readCycleSelectsAnEntry) {
    int spans = 0;
    const auto click = records().session.RefreshRead.Click;
    records().session.RefreshRead.Click = [&] {
        ++spans;
        click();
    };
    const std::pair<int, int> cases[] = {{-3, 5},  {5, 5},   {6, 10}, {10, 10},
                                         {11, 30}, {31, 60}, {61, 10}};
    for (const auto& [written, expected] : cases) {
        let(u"ReadCycle"_s, written);
        EXPECT_EQ(read(u"ReadCycle"_s), expected) << written;
        EXPECT_EQ(read(u"GetGraphCycle"_s, {1}), expected);
    }
    EXPECT_EQ(spans, 7); // as the user's choice does it
}

TEST_F(OddMembers, unitsAreChosenByTheirExactLetter) {
    records().conditions.Limit[Quantity::Wind][0].Value = 36;
    const QString speed = u"Kiv_SpeedUnits"_s;
    const QString temperature = u"Kiv_TemperatureUnits"_s;
    const struct {
        QString member, written, read;
    } cases[] = {
        {speed, u"KM"_s, u"K"_s},      {speed, u"m"_s, u"m"_s}, {speed, u"M"_s, u"M"_s},
        {speed, u"C"_s, u"M"_s},       {speed, u"m"_s, u"m"_s}, {temperature, u"c"_s, u"C"_s},
        {temperature, u"F"_s, u"F"_s},
    };
    for (const auto& [member, written, expected] : cases) {
        let(member, written);
        EXPECT_EQ(read(member), expected) << qPrintable(written);
    }
    EXPECT_NEAR(read(u"ThreshWindCalm"_s).toDouble(), 10, 1e-9); // 36 km/h
    records().units.UnitsTemp.Index = -1;
    EXPECT_EQ(read(temperature), QString());
}

TEST_F(OddMembers, switchControlReadsInverted) {
    const QString member = u"Kiv_DeviceSwitchCtrl"_s;
    records().session.SWRole.choose(0);
    EXPECT_EQ(read(member), false); // not connected
    connectSensor();
    EXPECT_EQ(read(member), true);
    for (const bool given : {true, false}) {
        let(member, given);
        EXPECT_EQ(read(member), !given);
        EXPECT_EQ(records().session.SwitchControl, !given);
        EXPECT_EQ(records().display.LblSwitch.Visible, !given);
    }
    sensor_.values[u"Kiv_DeviceRole"_s] = u"SLAVE"_s;
    let(member, true);
    EXPECT_EQ(read(member), true);
    EXPECT_TRUE(records().session.SwitchControl);
}

TEST_F(OddMembers, verdictIsSetUnderLocalControlOnly) {
    connectSensor();
    records().readings.UnsafeFlag = false;
    call(u"SetUnSafe"_s, {true});
    EXPECT_EQ(read(u"Safe"_s), true);
    EXPECT_EQ(sensor_.takeCalls(), QStringList());

    call(u"Kiv_LocalControl"_s, {true, u"dome script"_s});
    EXPECT_EQ(records().session.LblControl.Caption.value(), u"dome script"_s);
    call(u"SetUnSafe"_s, {true});
    EXPECT_EQ(read(u"Safe"_s), false);
    EXPECT_EQ(records().conditions.LblStatus.Caption.value(), u"Unsafe"_s);
    EXPECT_EQ(sensor_.takeCalls(), QStringList{u"SetUnSafe(b true)"_s});
    call(u"SetUnSafe"_s, {0});
    EXPECT_EQ(read(u"Safe"_s), true);
    EXPECT_EQ(records().conditions.LEDUnsafe.FillColor, kGreen);

    // The sensor program does not take it: the client is told, the verdict stands.
    sensor_.answering = false;
    EXPECT_EQ(use(u"SetUnSafe"_s, kMethod, {true}).error, AutomationError::Exception);
    EXPECT_EQ(read(u"Safe"_s), false);
}

TEST_F(OddMembers, alarmBoxesNeedASound) {
    let(u"AlarmVLight"_s, 1);
    EXPECT_EQ(read(u"AlarmVLight"_s), 0);
    let(u"SoundVLight"_s, u"/sounds/dawn.wav|repeat"_s);
    EXPECT_EQ(read(u"AlarmVLight"_s), 0) << "a sound does not switch the alarm on";
    EXPECT_TRUE(records().alarms.Alarm[Quantity::Brightness][2].HasIcons);
    let(u"AlarmVLight"_s, 1);
    EXPECT_EQ(read(u"AlarmVLight"_s), 1);
    let(u"SoundVLight"_s, QString());
    EXPECT_EQ(read(u"AlarmVLight"_s), 0);
}

// A client's True is -1, which no check box holds: refused, never taken for "not unsafe".
TEST_F(OddMembers, checkBoxesTakeZeroAndOne) {
    records().alarms.Alarm[Quantity::Rain][2].Tag = u"/sounds/rain.wav"_s;
    for (const QString& name : {u"SafeRain"_s, u"AlarmRain"_s, u"AlarmSuspendSound"_s}) {
        let(name, 1);
        for (const QVariant& wrong : {QVariant(true), QVariant(2), QVariant(-7)})
            EXPECT_EQ(use(name, kPropertyPut, {wrong}).error, AutomationError::Exception);
        EXPECT_EQ(read(name), 1);
        let(name, u"0"_s);
        EXPECT_EQ(read(name), 0);
    }
}

TEST_F(OddMembers, levelsHaveOneIndexInEveryFamily) {
    const std::pair<Quantity, QStringList> quantities[] = {
        // in the order of their index
        {Quantity::Cloud, {u"Clear"_s, u"Cloudy"_s, u"Overcast"_s}},
        {Quantity::Rain, {u"Dry"_s, u"Wet"_s, u"Rain"_s}},
        {Quantity::Brightness, {u"Dark"_s, u"Light"_s, u"VLight"_s}},
        {Quantity::Wind, {u"WindCalm"_s, u"WindWindy"_s, u"WindVWindy"_s}},
        {Quantity::Gust, {u"GustCalm"_s, u"GustWindy"_s, u"GustVWindy"_s}},
        {Quantity::Temperature, {u"TempCold"_s, u"TempFine"_s, u"TempHot"_s}},
        {Quantity::Dew, {u"DewCondensation"_s, u"DewHumid"_s, u"DewFine"_s}},
        {Quantity::Humidity, {u"HumFine"_s, u"HumHumid"_s, u"HumVHumid"_s}},
    };
    ConditionControls& controls = records().conditions;
    int next = 100; // another value for every control
    for (const auto& [quantity, levels] : quantities) {
        for (std::size_t i = 0; i < 3; ++i) {
            const QString& level = levels[static_cast<qsizetype>(i)];
            SCOPED_TRACE(qPrintable(level));
            CheckBox& unsafe = controls.Cond[quantity][i];
            for (const int flag : {0, 1}) {
                let(u"Safe"_s + level, flag);
                EXPECT_EQ(unsafe.Value, flag);
            }
            if (quantity <= Quantity::Brightness) {
                const QString sound = u"%1.wav"_s.arg(++next);
                let(u"Sound"_s + level, sound);
                EXPECT_EQ(records().alarms.Alarm[quantity][i].Tag.value(), sound);
                EXPECT_EQ(read(u"Sound"_s + level), sound);
                let(u"Alarm"_s + level, 1);
                EXPECT_EQ(records().alarms.Alarm[quantity][i].Value, 1);
                continue;
            }
            const QString limit = u"Thresh"_s + QString(level).replace(u"Temp"_s, u"TAmb"_s);
            let(limit, ++next + 0.5);
            EXPECT_EQ(controls.Limit[quantity][i].Value, next + 0.5);
            EXPECT_EQ(read(limit), next + 0.5);
            Label& swatch = controls.Color[quantity][i];
            let(u"Color"_s + level, ++next);
            EXPECT_EQ(swatch.BackColor, next);
            EXPECT_EQ(read(u"Color"_s + level), next);
            const QString text = u"text %1"_s.arg(++next);
            let(u"Desc"_s + level, text);
            EXPECT_EQ(swatch.Caption.value(), text);
            EXPECT_EQ(unsafe.Caption.value(), text);
            EXPECT_EQ(read(u"Desc"_s + level), text);
        }
    }
    std::size_t i = 0;
    for (const QString& level : {u"Calm"_s, u"Windy"_s, u"VWindy"_s}) {
        controls.Direction[Quantity::Wind][i].Caption = u"wind "_s + level;
        controls.Direction[Quantity::Gust][i++].Caption = u"gust "_s + level;
        EXPECT_EQ(read(u"DescDirWind"_s + level), u"wind "_s + level);
        EXPECT_EQ(read(u"DescDirGust"_s + level), u"gust "_s + level);
    }
}

TEST_F(OddMembers, dataDisplayed) {
    ReadingDisplay& display = records().display;
    PaintLabel(display.LCond[Quantity::Cloud], 0x0000FF, u"Overcast"_s);
    display.LVal[Quantity::Cloud].Caption = u"-21.5"_s;
    display.LVal[Quantity::Gust].Caption = u"12"_s;
    const QString color = u"color"_s, desc = u"desc"_s, value = u"value"_s, none = u"n/a"_s;
    const struct {
        QString info, ref, shown;
    } cases[] = {
        {color, u"CLOUD"_s, u"#FF0000"_s},  {u"Color"_s, u"cloud"_s, {}},
        {desc, u"Cloud"_s, u"Overcast"_s},  {desc, u"clouds"_s, none},
        {value, u"cloud"_s, u"-21.5 °C"_s}, {value, u"gust"_s, u"12 km/hr"_s},
        {value, u"humidity"_s, none},       {value, u"brightness"_s, none},
    };
    for (const auto& [info, ref, shown] : cases)
        EXPECT_EQ(read(u"Kiv_DataDisplayed"_s, {info, ref}), shown)
            << qPrintable(info + u' ' + ref);
}

TEST_F(OddMembers, valuesOfReadings) {
    CurrentReadings& readings = records().readings;
    const struct {
        std::int32_t rain, cloud, sky;
        bool wet;
    } skies[] = {{RainUnknown, CloudClear, SkyUnknown, false},
                 {RainRain, CloudUnknown, SkyUnknown, true},
                 {RainDry, CloudClear, SkyClear, false},
                 {RainDry, CloudVeryCloudy, SkyVeryCloudy, false},
                 {RainWet, CloudClear, SkyWet, true},
                 {RainRain, CloudCloudy, SkyWet, true}};
    for (const auto& [rain, cloud, sky, wet] : skies) {
        readings.Condition[Quantity::Rain] = rain;
        readings.Condition[Quantity::Cloud] = cloud;
        EXPECT_EQ(read(u"Condition_Sky"_s), sky);
        EXPECT_EQ(read(u"Condition_WetF"_s), wet);
    }
    records().conditions.SafeDelayVal.Value = 60.5;
    EXPECT_EQ(read(u"Kiv_SafeDelayValue"_s), 60);

    readings.StationTemperature = 11.25;
    records().display.LVal[Quantity::Temperature].Caption = u"11.3"_s;
    EXPECT_EQ(read(u"AmbientTemperature"_s), 11.3);
    EXPECT_EQ(read(u"TemperatureAmb"_s), 11.25);
    records().display.LVal[Quantity::Temperature].Caption = QString();
    EXPECT_EQ(read(u"AmbientTemperature"_s), 0.0);

    Records& all = records();
    all.conditions.SafeDelayMsg.Caption = u" SAFE condition delayed by 60 s "_s;
    all.display.NBAlarmMsg.Caption = u"NB "_s;
    all.display.WSAlarmMsg.Caption = u"WS data too old"_s;
    EXPECT_EQ(read(u"Kiv_SafeDelayMsg"_s),
              u"SAFE condition delayed by 60 s / WS data too old / NB"_s);

    EXPECT_EQ(read(u"VersionNB"_s), u"0.00.000"_s);
    connectSensor();
    EXPECT_EQ(read(u"VersionNB"_s), u"5.20.0001"_s);
}

TEST_F(OddMembers, graphMembersChooseByNumber) {
    records().history.FirstElem = 3;
    records().history.LastElem = 2;
    sensor_.values[u"Kiv_GraphArrayFirstElem"_s] = 77;
    sensor_.values[u"GraphTemperatureMax"_s] = 40.0;
    for (const int graph : {0, 5, -1}) {
        EXPECT_EQ(read(u"Kiv_GraphArrayFirstElem"_s, {graph}), 3);
        EXPECT_EQ(read(u"Kiv_GraphArrayLastElem"_s, {graph}), 2);
    }
    EXPECT_EQ(read(u"GraphTemperatureMax"_s, {1}), 0);
    EXPECT_EQ(after_, QVariantList{1});
    records().graphs.GraphFreq.Value = 6;
    EXPECT_EQ(read(u"GetGraphFreq"_s, {1}), 6);
    connectSensor();
    for (const int graph : {1, 4})
        EXPECT_EQ(read(u"Kiv_GraphArrayFirstElem"_s, {graph}), 77);
    EXPECT_EQ(read(u"GraphTemperatureMax"_s, {0}), 40);
}

TEST_F(OddMembers, deviceStopIsForALoneClient) {
    call(u"Device_Start"_s);
    EXPECT_EQ(read(u"DeviceIsRunning"_s), true);
    RegisterUsers(records(), clock_, +1);
    EXPECT_EQ(read(u"Kiv_TotalNoUsers"_s), 2);
    call(u"Kiv_DeviceStop"_s);
    EXPECT_EQ(read(u"DeviceIsRunning"_s), true);
    RegisterUsers(records(), clock_, -1);
    call(u"Kiv_DeviceStop"_s);
    EXPECT_EQ(read(u"DeviceIsRunning"_s), false);
    call(u"Device_Start"_s);
    RegisterUsers(records(), clock_, +1);
    call(u"Device_Stop"_s);
    EXPECT_EQ(read(u"DeviceIsRunning"_s), false);
}

TEST_F(OddMembers, activityIndicator) {
    SessionControls& session = records().session;
    session.CallCounter = 9998;
    for (const QString& shown : {u"9999"_s, u"0"_s}) {
        call(u"BlinkLEDCOM"_s);
        EXPECT_EQ(session.COMCalls.Caption.value(), shown);
    }
    EXPECT_EQ(session.LEDCOM.first.FillColor, kGrey);
    EXPECT_EQ(session.LEDCOM.second.FillColor, 0x80FFFF);
    read(u"SecondsSinceGoodData"_s);
    clock_.advanceMs(12'999);
    read(u"Safe"_s);
    read(u"Condition_Cloud"_s);
    EXPECT_EQ(session.COMPeriod.Caption.value(), u"12s"_s);
}

TEST_F(OddMembers, windowIsAnObjectOfItsOwn) {
    EXPECT_EQ(read(u"MForm"_s).value<QDBusObjectPath>().path(), u"/Kiv_Skyhold/Nubilo/MForm"_s);
    const std::shared_ptr<const MemberTable> form = formMembers(*core_);
    const auto ask = [&](const QString& name, unsigned kind, QVariantList arguments = {}) {
        return form->invokeByName(name, kind, arguments);
    };
    WindowControls& window = records().window;
    EXPECT_EQ(ask(u"caption"_s, kRead).result, u"Kiv_Skyhold (v2.30.004)"_s);
    window.HasTrayIcon = true;
    EXPECT_TRUE(ask(u"WindowState"_s, kPropertyPut, {1}).ok());
    EXPECT_EQ(window.State, WindowState::Minimized);
    EXPECT_FALSE(window.Visible);
    EXPECT_EQ(ask(u"WindowState"_s, kPropertyPut, {3}).error, AutomationError::Exception);
    call(u"WindowNormal"_s);
    EXPECT_EQ(ask(u"WindowState"_s, kRead).result, 0);
    EXPECT_TRUE(window.Visible);
    let(u"WindowLeft"_s, 40);
    EXPECT_EQ(read(u"WindowLeft"_s), 40);

    EXPECT_TRUE(ask(u"Device_Start"_s, kMethod).ok());
    EXPECT_EQ(ask(u"SecondsSinceGoodData"_s, kRead).result, 3);
    EXPECT_TRUE(ask(u"HasControl"_s, kMethod, {true, u"x"_s}).ok());
    EXPECT_TRUE(clientDecides(*core_));
    EXPECT_TRUE(ask(u"Device_Stop"_s, kMethod).ok());
    EXPECT_FALSE(records().session.running());
    EXPECT_EQ(ask(u"RegisterUsers"_s, kMethod, {1}).error, AutomationError::UnknownName);
}

} // namespace
} // namespace skyhold
