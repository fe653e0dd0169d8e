// SPDX-License-Identifier: GPL-3.0-or-later
#include "automation/all_members.h"
#include "automation/displayed_data.h"
#include "automation/sensor_calls.h"

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;
using enum AutomationType;
using Core = MonitoringCore;

// The sky as one condition: rain counts more than clouds.
std::int32_t skyCondition(const CurrentReadings& readings) {
    if (readings.Condition[Quantity::Rain] == RainUnknown ||
        readings.Condition[Quantity::Cloud] == CloudUnknown)
        return SkyUnknown;
    return readings.Condition[Quantity::Rain] == RainDry ? readings.Condition[Quantity::Cloud]
                                                         : static_cast<std::int32_t>(SkyWet);
}

bool isWet(const CurrentReadings& readings) {
    return readings.Condition[Quantity::Rain] == RainRain ||
           readings.Condition[Quantity::Rain] == RainWet;
}

double shownTemperature(const Core& core) {
    return numberFromText(core.records.display.LVal[Quantity::Temperature].Caption.value(),
                          core.forms)
        .value_or(0);
}

// One end of the temperature scale of the sensor program's graph; it expects a 16-bit number.
MemberAct graphTemperature(const QString& name) {
    return [name](Core& core, QVariantList& arguments) {
        if (arguments[0].toInt() != 0)
            return answered(0);
        return readFromSensor(core, name, I4, {QVariant::fromValue(qint16{0})});
    };
}

// A value of the current readings.
template <typename Value>
MemberAct reading(Value CurrentReadings::*field) {
    return answering([field](Core& core) { return core.records.readings.*field; });
}

// A value of the station; a missing one is 0, for the type has no other.
MemberAct measured(std::optional<double> CurrentReadings::*field) {
    return answering([field](Core& core) { return (core.records.readings.*field).value_or(0); });
}

MemberAct level(Quantity quantity) {
    return answering([quantity](Core& core) { return core.records.readings.Condition[quantity]; });
}

MemberAct sensorValue(SensorValue value) {
    return answering([value](Core& core) { return core.records.readings.SensorValues[value]; });
}

// A unit text of the station's file.
MemberAct unitText(StationEntry entry) {
    return answering(
        [entry](Core& core) { return core.records.display.stationValue(entry).Caption.value(); });
}

MemberKind condition(const QString& enumeration, const QString& help,
                     Activity activity = Activity::Signal) {
    return {I4, help, activity, Source::Local, enumeration};
}

void addConditions(MemberList& list) {
    constexpr Activity kTimed = Activity::SignalWithPeriod;
    list.method(u"AmbientTemperature"_s,
                {R8, u"station temperature as the window shows it, 0 when it shows none"_s},
                answering(shownTemperature));
    list.method(u"Condition_Brightness"_s, condition(u"BrightnessCond"_s, u"brightness"_s),
                level(Quantity::Brightness));
    list.method(u"Condition_Cloud"_s, condition(u"CloudCond"_s, u"clouds"_s, kTimed),
                level(Quantity::Cloud));
    list.method(u"Condition_DewCond"_s, condition(u"DewCond"_s, u"dew point"_s, kTimed),
                level(Quantity::Dew));
    list.method(u"Condition_Gust"_s, condition(u"WindCond"_s, u"gusts"_s), level(Quantity::Gust));
    list.method(u"Condition_HumCond"_s, condition(u"HumidityCond"_s, u"humidity"_s, kTimed),
                level(Quantity::Humidity));
    list.method(u"Condition_Rain"_s, condition(u"RainCond"_s, u"rain"_s), level(Quantity::Rain));
    list.method(u"Condition_Temp"_s, condition(u"TemperatureCond"_s, u"temperature"_s),
                level(Quantity::Temperature));
    list.method(u"Condition_Sky"_s, condition(u"SkyCond"_s, u"clouds, or wet"_s, kTimed),
                answering([](Core& core) { return skyCondition(core.records.readings); }));
    list.method(u"Condition_WetF"_s, {Bool, u"whether it is wet or rains"_s},
                answering([](Core& core) { return isWet(core.records.readings); }));
    list.method(u"Condition_Wind"_s, condition(u"WindCond"_s, u"wind"_s), level(Quantity::Wind));
}

void addFirstValues(MemberList& list) {
    list.method(u"DataReady"_s, {Bool, u"whether Kiv_Nubilo has data"_s},
                reading(&CurrentReadings::SensorDataReady));
    list.method(u"BrightnessValue"_s, {R8, u"brightness"_s}, sensorValue(kBrightnessValue));
    list.method(u"DewPointTemp"_s, {R8, u"dew point, 0 when missing"_s, Activity::None},
                measured(&CurrentReadings::DewPointValue));
    list.method(u"GraphFreq"_s, {I4, u"readings per point of the graphs"_s},
                answering([](Core& core) { return rounded(core.records.graphs.GraphFreq.Value); }));
    for (const char* end : {"Max", "Min"}) {
        const QString name = u"GraphTemperature"_s + QLatin1String(end);
        list.method(name, {{u"iP"_s, I4, true}},
                    {I4, u"end of the temperature scale of Kiv_Nubilo for 0, else 0"_s,
                     Activity::Signal, Source::SensorUnchecked},
                    graphTemperature(name));
    }
    list.method(u"GustValue"_s, {R8, u"gust speed, 0 when missing"_s},
                measured(&CurrentReadings::GustSpeed));
    list.method(u"HumidityRelative"_s,
                {R8, u"relative humidity in percent, 0 when missing"_s, Activity::None},
                measured(&CurrentReadings::HumidityValue));
    list.method(u"RainHeaterPercent"_s, {R8, u"power of the rain sensor's heater in percent"_s},
                sensorValue(kRainHeaterPercent));
    list.method(u"RainHeaterTemperature"_s, {R8, u"temperature of the rain sensor"_s},
                sensorValue(kRainHeaterTemperature));
    list.method(u"RainValue"_s, {R8, u"value of the rain sensor, cycles"_s},
                sensorValue(kRainValue));
    list.method(u"Safe"_s, {Bool, u"the verdict"_s},
                answering([](Core& core) { return !core.records.readings.UnsafeFlag; }));
    list.method(u"SecondsSinceGoodData"_s,
                {I4, u"3 while both sources are healthy, 1000 while any is not"_s,
                 Activity::SignalWithPeriod},
                answering([](Core& core) { return SecondsSinceGoodData(core.records.readings); }));
}

void addSecondValues(MemberList& list) {
    list.method(u"SkySensorTemperature"_s, {R8, u"temperature of the sky sensor"_s},
                reading(&CurrentReadings::SkySensorTemperature));
    list.method(u"SkyTemperature"_s, {R8, u"temperature of the sky"_s},
                sensorValue(kSkyTemperature));
    list.method(u"SwitchStatus"_s, {I4, u"roof switch: 1 opened, 2 closed"_s},
                answering([](Core& core) { return rounded(core.records.readings.SwitchValue); }));
    list.method(u"TemperatureAmb"_s, {R8, u"station temperature, 0 when missing"_s},
                measured(&CurrentReadings::StationTemperature));
    list.get(u"UnitTemp"_s, {Text, u"unit of temperatures in the station's file"_s},
             unitText(StationEntry::TemperatureUnit));
    list.get(u"UnitSpeed"_s, {Text, u"unit of speeds in the station's file"_s},
             unitText(StationEntry::SpeedUnit));
    list.method(u"WindDir"_s, {R8, u"wind direction in degrees, 0 when missing"_s},
                measured(&CurrentReadings::WindDirection));
    list.method(u"WindValue"_s, {R8, u"wind speed, 0 when missing"_s},
                measured(&CurrentReadings::WindSpeed));
    list.method(u"BarometricPressure"_s, {R8, u"pressure"_s},
                reading(&CurrentReadings::BarometricPressure));
    list.method(u"UnitsBarometricPressure"_s, {Text, u"unit of the pressure"_s},
                unitText(StationEntry::PressureUnit));
}

} // namespace

void addReadingMembers(MemberList& list) {
    addConditions(list);
    addFirstValues(list);
    addSecondValues(list);
}

void addLastMembers(MemberList& list) {
    const auto ofWhich = [](const QString& what) {
        return MemberKind{I4, what + u": of Kiv_Nubilo for 0, else of this program"_s,
                          Activity::None, Source::SensorUnchecked};
    };
    list.method(u"GetGraphCycle"_s, {{u"iP"_s, I4, false}}, ofWhich(u"read interval in seconds"_s),
                [](Core& core, QVariantList& arguments) {
                    if (arguments[0].toInt() == 0)
                        return readFromSensor(core, u"ReadCycle"_s, I4);
                    return answered(core.records.session.RefreshRead.chosenSeconds());
                });
    list.method(u"GetGraphFreq"_s, {{u"iP"_s, I4, false}}, ofWhich(u"readings per point"_s),
                [](Core& core, QVariantList& arguments) {
                    if (arguments[0].toInt() == 0)
                        return readFromSensor(core, u"GetGraphFreq"_s, I4, {0});
                    return answered(rounded(core.records.graphs.GraphFreq.Value));
                });
    list.skipMethodId();
    list.method(u"Kiv_DataDisplayed"_s, {{u"info"_s, Text, false}, {u"ref"_s, Text, false}},
                {Text, u"what the window shows of a quantity"_s, Activity::None},
                [](Core& core, QVariantList& arguments) {
                    return answered(Kiv_DataDisplayed(core.records.display, core.records.units,
                                                      arguments[0].toString(),
                                                      arguments[1].toString()));
                });
}

} // namespace skyhold
