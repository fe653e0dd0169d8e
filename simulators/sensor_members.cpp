#include "simulators/sensor_members.h"

#include <array>
#include <limits>

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
    Setting{"ThreshBrightnessDark", R8, kBrightnessLimits[0]},
    Setting{"ThreshBrightnessLigth", R8, kBrightnessLimits[1]},
    Setting{"ThreshBrightnessVLigth", R8, kBrightnessLimits[2]},
    Setting{"BrightnessUnknowConditionValue", I4, 0},
    Setting{"ThreshRainDry", R8, kRainLimits[0]},
    Setting{"ThreshRainWet", R8, kRainLimits[1]},
    Setting{"ThreshRainRain", R8, kRainLimits[2]},
    Setting{"RainUnknowConditionValue", I4, 0},
    Setting{"ThreshTempClear", R8, kCloudLimits[0]},
    Setting{"ThreshTempCloudy", R8, kCloudLimits[1]},
    Setting{"ThreshTempVCloudy", R8, kCloudLimits[2]},
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
    // A property that keeps what was written under `key` of the device's settings.
    void setting(const QString& name, AutomationType type, SensorDevice& device, const QString& key,
                 const QVariant& start) {
        device.settings.insert(key, start);
        property(
            name, type, [&device, key] { return device.settings.value(key); },
            [&device, key](const QVariant& value) { device.settings[key] = value; });
    }

  private:
    MemberTable& table_;
    std::int32_t id_ = 0;
};

void addReadings(Adder& add, SensorDevice& device) {
    const auto number = [&](const QString& name, double Weather::*value) {
        add.method(name, R8, [&device, value] { return device.reading().*value; });
    };
    const auto temperature = [&](const QString& name, double Weather::*value) {
        add.method(name, R8,
                   [&device, value] { return device.temperature(device.reading().*value); });
    };
    const auto condition = [&](const QString& name, std::int32_t Weather::*value) {
        add.method(name, I4, [&device, value] { return device.reading().*value; });
    };
    condition(u"Condition_Cloud"_s, &Weather::cloudCondition);
    condition(u"Condition_Rain"_s, &Weather::rainCondition);
    condition(u"Condition_Brightness"_s, &Weather::brightnessCondition);
    temperature(u"SkyTemperature"_s, &Weather::skyTemperature);
    number(u"RainValue"_s, &Weather::rainValue);
    number(u"BrightnessValue"_s, &Weather::brightnessValue);
    temperature(u"SkySensorTemperature"_s, &Weather::sensorTemperature);
    temperature(u"AmbientTemperature"_s, &Weather::temperature);
    number(u"RainHeaterPercent"_s, &Weather::heaterPercent);
    temperature(u"RainHeaterTemperature"_s, &Weather::heaterTemperature);
    add.method(u"RainHeaterStatus"_s, Text, [&device] { return device.heaterStatus(); });
    add.method(u"LastReading"_s, Date, [&device] {
        const QDateTime time = device.lastReading();
        return QVariant::fromValue(AutomationDate{time.isValid() ? daySerial(time) : 0});
    });
}

void addState(Adder& add, SensorDevice& device) {
    add.get(u"Version"_s, Text, [&device] { return device.version(); });
    add.get(u"Kiv_DeviceRole"_s, Text, [&device] { return device.role(); });
    add.call(u"Device_Start"_s, {}, [&device](QVariantList&) { device.start(); });
    add.method(u"DataReady"_s, Bool, [&device] { return device.dataReady(); });
    add.method(u"DeviceIsRunning"_s, Bool, [&device] { return device.running(); });
    add.method(u"Kiv_XFERFileErr"_s, Bool, [&device] { return device.transferFailed(); });
    add.method(u"XFERFileErr"_s, Bool, [&device] { return device.transferFailed(); });
    add.call(u"Kiv_AlarmStop"_s, {}, [&device](QVariantList&) { device.stopAlarm(); });
    add.call(u"Kiv_LocalControl"_s, {{u"vData"_s, Bool, false}, {u"sLabel"_s, Text, false}},
             [&device](QVariantList& arguments) {
                 device.setLocalControl(arguments[0].toBool(), arguments[1].toString());
             });
    add.property(
        u"Kiv_DeviceSwitchCtrl"_s, Bool, [&device] { return device.switchControl(); },
        [&device](const QVariant& value) { device.setSwitchControl(value.toBool()); });
    add.property(
        u"Kiv_TemperatureUnits"_s, Text, [&device] { return device.temperatureUnit(); },
        [&device](const QVariant& value) { device.setTemperatureUnit(value.toString()); });
    add.call(u"SetUnSafe"_s, {{u"iP"_s, Bool, true}},
             [&device](QVariantList& arguments) { device.setUnsafe(arguments[0].toBool()); });
    add.call(u"Kiv_SetSwitch"_s, {{u"vData"_s, R8, true}},
             [&device](QVariantList& arguments) { device.setSwitch(arguments[0].toDouble()); });
    add.method(u"SwitchStatus"_s, R8, [&device] { return device.switchStatus(); });
}

void addGraphs(Adder& add, SensorDevice& device) {
    const Parameters graphNo{{u"GraphNo"_s, I4, false}};
    add.method(u"Kiv_GraphArrayFirstElem"_s, I4, graphNo,
               [&device](QVariantList&) { return answered(device.historyFirst()); });
    add.method(u"Kiv_GraphArrayLastElem"_s, I4, graphNo,
               [&device](QVariantList&) { return answered(device.historyLast()); });
    const auto graph = [&](const QString& name, SensorGraph kind) {
        add.method(name, Variant,
                   [&device, kind] { return QVariant::fromValue(device.history(kind)); });
    };
    graph(u"Kiv_GraphArrayCloud"_s, SensorGraph::Cloud);
    graph(u"Kiv_GraphArrayRain"_s, SensorGraph::Rain);
    graph(u"Kiv_GraphArrayDay"_s, SensorGraph::Day);
    graph(u"Kiv_GraphArrayTemp"_s, SensorGraph::Temp);
    const auto scaleEnd = [&](const QString& name, double celsius) {
        add.method(name, I4, {{u"iP"_s, I4, true}}, [&device, celsius](QVariantList&) {
            return answered(static_cast<int>(device.temperature(celsius)));
        });
    };
    scaleEnd(u"GraphTemperatureMax"_s, 40);
    scaleEnd(u"GraphTemperatureMin"_s, -40);
    add.get(u"ReadCycle"_s, I4, [] { return kSensorReadCycle; });
    add.method(u"GetGraphFreq"_s, I4, {{u"iP"_s, I4, false}},
               [](QVariantList&) { return answered(kSensorGraphFreq); });
}

// A value that no client can take for what the member should answer.
QVariant ofWrongType(AutomationType type) {
    return type == Text ? QVariant(QVariantList{1, 2}) : QVariant(u"wrong"_s);
}

QVariant spoiled(AutomationType type, const QVariant& value, const Faults& faults) {
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    if (type == Empty)
        return value;
    if (faults.has(u"wrong-types"_s))
        return ofWrongType(type);
    if (faults.has(u"empty"_s))
        return {};
    if (faults.has(u"megabyte"_s) && type == Text)
        return QString(1'000'000, u'm');
    if (faults.has(u"level"_s) && type == I4)
        return faults.number(u"level"_s, 9);
    if (faults.has(u"inf"_s) && type == R8)
        return std::numeric_limits<double>::infinity();
    if (faults.has(u"nan"_s) && type == R8)
        return kNan;
    if (faults.has(u"nan"_s) && type == Date)
        return QVariant::fromValue(AutomationDate{kNan});
    return value;
}

QString formName(const char* control) {
    return u"MForm/"_s + QLatin1String(control);
}

// An object with a "Value".
QDBusObjectPath addNumberBox(AutomationServer& server, SensorDevice& device, const QString& name,
                             const QVariant& start) {
    auto table = std::make_shared<MemberTable>();
    Adder(*table).setting(u"Value"_s, R8, device, name, start);
    return server.addObject(name, table);
}

} // namespace

std::shared_ptr<MemberTable> sensorMembers(SensorDevice& device, const Faults& faults,
                                           const QDBusObjectPath& form) {
    MemberTable plain;
    Adder add(plain);
    addState(add, device);
    addReadings(add, device);
    addGraphs(add, device);
    for (const Setting& setting : kSettings) {
        const QString name = QString::fromLatin1(setting.name);
        add.setting(name, setting.type, device, name, setting.start);
    }
    add.method(u"MForm"_s, Object, [form] { return QVariant::fromValue(form); });

    auto members = std::make_shared<MemberTable>();
    for (AutomationMember member : plain.members()) {
        member.act = [act = member.act, type = member.result, &faults](QVariantList& arguments) {
            AutomationReply reply = act(arguments);
            reply.result = spoiled(type, reply.result, faults);
            return reply;
        };
        members->add(std::move(member));
    }
    return members;
}

void addSensorForm(AutomationServer& server, SensorDevice& device) {
    auto form = std::make_shared<MemberTable>();
    Adder add(*form);
    for (const char* name : {"UnknowRainLT", "UnknowCloudGT"}) {
        const QDBusObjectPath box = addNumberBox(server, device, formName(name), 0.0);
        add.get(QString::fromLatin1(name), Object, [box] { return QVariant::fromValue(box); });
    }
    for (const char* name : {"RainLimit", "CloudLimit"}) {
        std::vector<QDBusObjectPath> boxes;
        boxes.reserve(3);
        for (int i = 0; i < 3; ++i)
            boxes.push_back(addNumberBox(server, device, formName(name) + QString::number(i), 0.0));
        add.method(QString::fromLatin1(name), Object, {{u"Index"_s, I4, false}},
                   [boxes](QVariantList& arguments) -> AutomationReply {
                       const int index = arguments[0].toInt();
                       if (index < 0 || index >= static_cast<int>(boxes.size()))
                           return {{}, AutomationError::Exception, u"there is no such element"_s};
                       return answered(QVariant::fromValue(boxes[static_cast<std::size_t>(index)]));
                   });
    }
    add.call(u"CloudTempSet"_s, {{u"flag"_s, Bool, false}}, [&device](QVariantList& arguments) {
        device.settings[u"TempFactorON"_s] = arguments[0];
    });
    server.addObject(u"MForm"_s, form);
}

} // namespace skyhold
