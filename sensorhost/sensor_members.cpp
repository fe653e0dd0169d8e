// SPDX-License-Identifier: GPL-3.0-or-later
#include "sensorhost/sensor_members.h"

#include "platform/clock.h"
#include "sensorhost/sensor_graphs.h"

#include <array>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;
using enum AutomationType;

using Parameters = std::vector<AutomationParameter>;

// Properties that are kept as they were written.
struct Setting {
    const char* name;
    AutomationType type;
    QVariant start;
};

const std::array kSettings{
    Setting{"BrightnessUnknowConditionValue", I4, 0},
    Setting{"RainUnknowConditionValue", I4, 0},
    Setting{"CloudUnknowConditionValue", I4, 0},
    Setting{"ColorClear", I4, 0xC0FFC0},
    Setting{"ColorCloudy", I4, 0xC0FFFF},
    Setting{"ColorVCloudy", I4, 0xC0E0FF},
    Setting{"ColorDry", I4, 0xC0FFC0},
    Setting{"ColorWet", I4, 0xC0FFFF},
    Setting{"ColorRain", I4, 0xC0E0FF},
    Setting{"ColorDark", I4, 0xC0FFC0},
    Setting{"ColorLight", I4, 0xC0FFFF},
    Setting{"ColorVLight", I4, 0xC0E0FF},
    Setting{"DescriptionClear", Text, u"Clear"_s},
    Setting{"DescriptionCloudy", Text, u"Cloudy"_s},
    Setting{"DescriptionVCloudy", Text, u"Overcast"_s},
    Setting{"DescriptionDry", Text, u"Dry"_s},
    Setting{"DescriptionWet", Text, u"Wet"_s},
    Setting{"DescriptionRain", Text, u"Rain"_s},
    Setting{"DescriptionDark", Text, u"Dark"_s},
    Setting{"DescriptionLight", Text, u"Light"_s},
    Setting{"DescriptionVLight", Text, u"Very Light"_s},
    Setting{"TempFactorON", Bool, false},
    Setting{"TempFactorK1", I4, 33},
    Setting{"TempFactorK2", I4, 0},
    Setting{"TempFactorK3", I4, 4},
    Setting{"TempFactorK4", I4, 100},
    Setting{"TempFactorK5", I4, 100},
    Setting{"NoConsecutiveUnknownReads", I4, 3},
    Setting{"NoConsecutiveRS232Errors", I4, 3},
    Setting{"Kiv_CloudAlarmDelay", I4, 0},
};

AutomationReply done() {
    return {};
}

AutomationReply answered(const QVariant& result) {
    return {.result = result, .text = {}};
}

// What was not measured has no number that could be taken for a reading.
template <typename Value>
AutomationReply answeredIfThere(const std::optional<Value>& value) {
    if (value)
        return answered(*value);
    return {{}, AutomationError::Exception, u"there is no current value"_s};
}

// Adds members one after another, each with the next free id.
class Adder {
  public:
    explicit Adder(MemberTable& table)
        : table_(table) {}

    using Act = std::function<AutomationReply(QVariantList&)>;

    void method(const QString& name, AutomationType result, Parameters parameters, Act act) {
        table_.add({name, ++id_, kMethod, result, std::move(parameters), std::move(act)});
    }
    void method(const QString& name, AutomationType result, std::function<QVariant()> get) {
        method(name, result, {}, [get = std::move(get)](QVariantList&) { return answered(get()); });
    }
    void call(const QString& name, Parameters parameters, std::function<void(QVariantList&)> act) {
        method(name, Empty, std::move(parameters), [act = std::move(act)](QVariantList& arguments) {
            act(arguments);
            return done();
        });
    }
    void get(const QString& name, AutomationType type, std::function<QVariant()> get) {
        table_.add({name, ++id_, kPropertyGet, type, {}, [get = std::move(get)](QVariantList&) {
                        return answered(get());
                    }});
    }
    void property(const QString& name, AutomationType type, std::function<QVariant()> getValue,
                  std::function<void(const QVariant&)> put) {
        get(name, type, std::move(getValue));
        table_.add({name,
                    id_,
                    kPropertyPut,
                    Empty,
                    {{u"value"_s, type, false}},
                    [put = std::move(put)](QVariantList& arguments) {
                        put(arguments[0]);
                        return done();
                    }});
    }
    void propertyThatFails(const QString& name, AutomationType type,
                           std::function<QVariant()> getValue, const QString& why) {
        get(name, type, std::move(getValue));
        table_.add({name,
                    id_,
                    kPropertyPut,
                    Empty,
                    {{u"value"_s, type, false}},
                    [why](QVariantList&) -> AutomationReply {
                        return {{}, AutomationError::Exception, why};
                    }});
    }
    // A property that keeps what was written, under `key`.
    void setting(const QString& name, AutomationType type, SensorHost& host, const QString& key,
                 const QVariant& start) {
        host.settings.insert(key, start);
        property(
            name, type, [&host, key] { return host.settings.value(key); },
            [&host, key](const QVariant& value) { host.settings[key] = value; });
    }

  private:
    MemberTable& table_;
    std::int32_t id_ = 0;
};

void addReadings(Adder& add, SensorHost& host) {
    const auto number = [&](const QString& name, std::optional<double> SensorReading::*value) {
        add.method(name, R8, {}, [&host, value](QVariantList&) {
            return answeredIfThere(host.source.reading().*value);
        });
    };
    const auto temperature = [&](const QString& name, std::optional<double> SensorReading::*value) {
        add.method(name, R8, {}, [&host, value](QVariantList&) {
            std::optional<double> celsius = host.source.reading().*value;
            if (celsius)
                celsius = sensorTemperatureIn(host.temperatureUnit, *celsius);
            return answeredIfThere(celsius);
        });
    };
    const auto condition = [&](const QString& name,
                               std::optional<std::int32_t> SensorReading::*value) {
        add.method(name, I4, {}, [&host, value](QVariantList&) {
            return answeredIfThere(host.source.reading().*value);
        });
    };
    condition(u"Condition_Cloud"_s, &SensorReading::cloudCondition);
    condition(u"Condition_Rain"_s, &SensorReading::rainCondition);
    condition(u"Condition_Brightness"_s, &SensorReading::brightnessCondition);
    temperature(u"SkyTemperature"_s, &SensorReading::skyTemperature);
    number(u"RainValue"_s, &SensorReading::rainValue);
    number(u"BrightnessValue"_s, &SensorReading::brightnessValue);
    temperature(u"SkySensorTemperature"_s, &SensorReading::sensorTemperature);
    temperature(u"AmbientTemperature"_s, &SensorReading::temperature);
    number(u"RainHeaterPercent"_s, &SensorReading::heaterPercent);
    temperature(u"RainHeaterTemperature"_s, &SensorReading::heaterTemperature);
    add.method(u"RainHeaterStatus"_s, Text, [&host] { return host.source.reading().heaterStatus; });
    add.method(u"LastReading"_s, Date, [&host] {
        const QDateTime time = host.source.reading().time;
        return QVariant::fromValue(AutomationDate{time.isValid() ? daySerial(time) : 0});
    });
}

void addState(Adder& add, SensorHost& host) {
    SensorSource& source = host.source;
    add.get(u"Version"_s, Text, [&source] { return source.version(); });
    add.get(u"Kiv_DeviceRole"_s, Text, [&source] { return source.role(); });
    add.call(u"Device_Start"_s, {}, [&source](QVariantList&) { source.start(); });
    add.method(u"DataReady"_s, Bool, [&source] { return source.dataReady(); });
    add.method(u"DeviceIsRunning"_s, Bool, [&source] { return source.running(); });
    add.method(u"Kiv_XFERFileErr"_s, Bool, [&source] { return source.transferFailed(); });
    add.method(u"XFERFileErr"_s, Bool, [&source] { return source.transferFailed(); });
    add.call(u"Kiv_AlarmStop"_s, {}, [&source](QVariantList&) { source.stopAlarm(); });
    add.call(u"Kiv_LocalControl"_s, {{u"vData"_s, Bool, false}, {u"sLabel"_s, Text, false}},
             [&source](QVariantList& arguments) {
                 source.setLocalControl(arguments[0].toBool(), arguments[1].toString());
             });
    add.property(
        u"Kiv_DeviceSwitchCtrl"_s, Bool, [&source] { return source.switchControl(); },
        [&source](const QVariant& value) { source.setSwitchControl(value.toBool()); });
    add.property(
        u"Kiv_TemperatureUnits"_s, Text, [&host] { return host.temperatureUnit; },
        [&host](const QVariant& value) {
            if (value.toString() == host.temperatureUnit)
                return;
            host.temperatureUnit = value.toString();
            host.source.temperatureUnitChosen(host.temperatureUnit);
        });
    add.call(u"SetUnSafe"_s, {{u"iP"_s, Bool, true}},
             [&source](QVariantList& arguments) { source.setUnsafe(arguments[0].toBool()); });
    add.call(u"Kiv_SetSwitch"_s, {{u"vData"_s, R8, true}}, [&source](QVariantList& arguments) {
        const double value = arguments[0].toDouble();
        if (value == 1 || value == 2)
            source.setSwitch(value == 1 ? RoofState::Opened : RoofState::Closed);
    });
    add.method(u"SwitchStatus"_s, R8,
               [&source] { return static_cast<double>(source.switchStatus()); });
}

void addGraphs(Adder& add, SensorHost& host) {
    const Parameters graphNo{{u"GraphNo"_s, I4, false}};
    const auto size = [&host] {
        return static_cast<int>(host.source.history().size());
    };
    add.method(u"Kiv_GraphArrayFirstElem"_s, I4, graphNo,
               [size](QVariantList&) { return answered(size() > 0 ? 1 : 0); });
    add.method(u"Kiv_GraphArrayLastElem"_s, I4, graphNo,
               [size](QVariantList&) { return answered(size()); });
    const auto graph = [&](const QString& name, SensorGraph kind) {
        add.method(name, Variant, [&host, kind] {
            return QVariant::fromValue(
                sensorGraph(kind, host.source.history(), host.temperatureUnit));
        });
    };
    graph(u"Kiv_GraphArrayCloud"_s, SensorGraph::Cloud);
    graph(u"Kiv_GraphArrayRain"_s, SensorGraph::Rain);
    graph(u"Kiv_GraphArrayDay"_s, SensorGraph::Day);
    graph(u"Kiv_GraphArrayTemp"_s, SensorGraph::Temp);
    const auto scaleEnd = [&](const QString& name, double celsius) {
        add.method(name, I4, {{u"iP"_s, I4, true}}, [&host, celsius](QVariantList&) {
            return answered(static_cast<int>(sensorTemperatureIn(host.temperatureUnit, celsius)));
        });
    };
    scaleEnd(u"GraphTemperatureMax"_s, 40);
    scaleEnd(u"GraphTemperatureMin"_s, -40);
    add.get(u"ReadCycle"_s, I4, [&host] { return host.source.readCycle(); });
    add.method(u"GetGraphFreq"_s, I4, {{u"iP"_s, I4, false}},
               [&host](QVariantList&) { return answered(host.source.graphFrequency()); });
}

void addLimits(Adder& add, SensorHost& host) {
    const SensorLimits limits = host.source.limits();
    const auto addAll = [&](const std::array<const char*, 3>& names,
                            const std::array<double, 3>& values) {
        for (std::size_t i = 0; i < names.size(); ++i) {
            const QString name = QString::fromLatin1(names[i]);
            if (host.limitsAreFixed)
                add.propertyThatFails(
                    name, R8, [value = values[i]] { return QVariant(value); },
                    u"the limits stand in the sensor program's own settings"_s);
            else
                add.setting(name, R8, host, name, values[i]);
        }
    };
    addAll({"ThreshBrightnessDark", "ThreshBrightnessLigth", "ThreshBrightnessVLigth"},
           limits.brightness);
    addAll({"ThreshRainDry", "ThreshRainWet", "ThreshRainRain"}, limits.rain);
    addAll({"ThreshTempClear", "ThreshTempCloudy", "ThreshTempVCloudy"}, limits.cloud);
}

QString formName(const char* control) {
    return u"MForm/"_s + QLatin1String(control);
}

// An object with a "Value".
QDBusObjectPath addNumberBox(AutomationServer& server, SensorHost& host, const QString& name,
                             const QVariant& start) {
    auto table = std::make_shared<MemberTable>();
    Adder(*table).setting(u"Value"_s, R8, host, name, start);
    return server.addObject(name, table);
}

} // namespace

QString sensorProgramId() {
    return u"Kiv_Nubilo.Nubilo"_s;
}

QDBusObjectPath sensorFormPath() {
    return QDBusObjectPath(factoryPath(sensorProgramId()) + u"/MForm"_s);
}

std::shared_ptr<MemberTable> sensorMembers(SensorHost& host) {
    auto members = std::make_shared<MemberTable>();
    Adder add(*members);
    addState(add, host);
    addReadings(add, host);
    addGraphs(add, host);
    addLimits(add, host);
    for (const Setting& setting : kSettings) {
        const QString name = QString::fromLatin1(setting.name);
        add.setting(name, setting.type, host, name, setting.start);
    }
    add.method(u"MForm"_s, Object, [] { return QVariant::fromValue(sensorFormPath()); });
    return members;
}

void addSensorForm(AutomationServer& server, SensorHost& host) {
    auto form = std::make_shared<MemberTable>();
    Adder add(*form);
    for (const char* name : {"UnknowRainLT", "UnknowCloudGT"}) {
        const QDBusObjectPath box = addNumberBox(server, host, formName(name), 0.0);
        add.get(QString::fromLatin1(name), Object, [box] { return QVariant::fromValue(box); });
    }
    for (const char* name : {"RainLimit", "CloudLimit"}) {
        std::vector<QDBusObjectPath> boxes;
        boxes.reserve(3);
        for (int i = 0; i < 3; ++i)
            boxes.push_back(addNumberBox(server, host, formName(name) + QString::number(i), 0.0));
        add.method(QString::fromLatin1(name), Object, {{u"Index"_s, I4, false}},
                   [boxes](QVariantList& arguments) -> AutomationReply {
                       const int index = arguments[0].toInt();
                       if (index < 0 || index >= static_cast<int>(boxes.size()))
                           return {{}, AutomationError::Exception, u"there is no such element"_s};
                       return answered(QVariant::fromValue(boxes[static_cast<std::size_t>(index)]));
                   });
    }
    add.call(u"CloudTempSet"_s, {{u"flag"_s, Bool, false}},
             [&host](QVariantList& arguments) { host.settings[u"TempFactorON"_s] = arguments[0]; });
    server.addObject(u"MForm"_s, form);
}

} // namespace skyhold
