// SPDX-License-Identifier: GPL-3.0-or-later
#include "automation/all_members.h"
#include "automation/read_interval.h"
#include "automation/sensor_calls.h"
#include "conditions/alarms.h"
#include "conditions/level_names.h"

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;
using enum AutomationType;
using Core = MonitoringCore;

QString latin(const char* text) {
    return QString::fromLatin1(text);
}

// Properties of the sensor program, passed on.
void addSensorFamily(MemberList& list, const MemberKind& kind,
                     std::initializer_list<const char*> names) {
    MemberKind sensor = kind;
    sensor.source = Source::Sensor;
    for (const char* text : names) {
        const QString name = latin(text);
        list.property(name, sensor, forwardedRead(name, kind.type), forwardedLet(name));
    }
}

// The same, where the new value also goes into a control on the sensor program's main window.
void addSensorLimit(MemberList& list, const char* text, const MemberKind& kind,
                    const FormControl& control) {
    const QString name = latin(text);
    MemberKind sensor = kind;
    sensor.source = Source::Sensor;
    list.property(name, sensor, forwardedRead(name, kind.type),
                  [name, control](Core& core, QVariantList& arguments) {
                      const AutomationReply stored = writeToSensor(core, name, arguments[0]);
                      return stored.ok() ? writeToSensorForm(core, control, arguments[0]) : stored;
                  });
}

void addSensorThresholds(MemberList& list) {
    const MemberKind limit{R8, u"limit of Kiv_Nubilo"_s};
    const MemberKind unknown{I4, u"value of Kiv_Nubilo that counts as unknown"_s};
    addSensorFamily(list, limit,
                    {"ThreshBrightnessDark", "ThreshBrightnessLigth", "ThreshBrightnessVLigth"});
    addSensorFamily(list, unknown, {"BrightnessUnknowConditionValue"});
    addSensorFamily(list, limit, {"ThreshRainDry", "ThreshRainWet"});
    addSensorLimit(list, "ThreshRainRain", limit, {"UnknowRainLT", std::nullopt});
    addSensorLimit(list, "RainUnknowConditionValue", unknown, {"RainLimit", 2});
    addSensorFamily(list, limit, {"ThreshTempClear", "ThreshTempCloudy"});
    addSensorLimit(list, "ThreshTempVCloudy", limit, {"UnknowCloudGT", std::nullopt});
    addSensorLimit(list, "CloudUnknowConditionValue", unknown, {"CloudLimit", 2});
}

void addLimits(MemberList& list) {
    for (const auto& [name, quantity, index] : kLimitNames) {
        const auto box = [quantity = quantity, index = index](Core& core) -> NumberBox& {
            return core.records.conditions.Limit[quantity][index];
        };
        list.property(latin(name), {R8, u"upper limit of the level, in display units"_s},
                      answering([box](Core& core) { return box(core).Value.value(); }),
                      [box](Core& core, QVariantList& arguments) {
                          box(core).set(arguments[0].toDouble());
                          return answered();
                      });
    }
}

struct Swatch {
    const char* colour;
    const char* description;
    Quantity quantity;
    std::size_t index;
};

constexpr std::array<Swatch, 15> kSwatches{{
    {"ColorWindCalm", "DescWindCalm", Quantity::Wind, 0},
    {"ColorWindWindy", "DescWindWindy", Quantity::Wind, 1},
    {"ColorWindVWindy", "DescWindVWindy", Quantity::Wind, 2},
    {"ColorGustCalm", "DescGustCalm", Quantity::Gust, 0},
    {"ColorGustWindy", "DescGustWindy", Quantity::Gust, 1},
    {"ColorGustVWindy", "DescGustVWindy", Quantity::Gust, 2},
    {"ColorDewCondensation", "DescDewCondensation", Quantity::Dew, 0},
    {"ColorDewHumid", "DescDewHumid", Quantity::Dew, 1},
    {"ColorDewFine", "DescDewFine", Quantity::Dew, 2},
    {"ColorHumFine", "DescHumFine", Quantity::Humidity, 0},
    {"ColorHumHumid", "DescHumHumid", Quantity::Humidity, 1},
    {"ColorHumVHumid", "DescHumVHumid", Quantity::Humidity, 2},
    {"ColorTempCold", "DescTempCold", Quantity::Temperature, 0},
    {"ColorTempFine", "DescTempFine", Quantity::Temperature, 1},
    {"ColorTempHot", "DescTempHot", Quantity::Temperature, 2},
}};
// The descriptions of temperatures come later than the others.
constexpr std::size_t kFirstTemperature = 12;

void addColours(MemberList& list) {
    const MemberKind ofSensor{I4, u"colour in Kiv_Nubilo, 0x00BBGGRR"_s};
    addSensorFamily(
        list, ofSensor,
        {"ColorClear", "ColorCloudy", "ColorVCloudy", "ColorDry", "ColorWet", "ColorRain"});
    for (const Swatch& swatch : kSwatches) {
        const auto colour = [swatch](Core& core) -> QProperty<Colour>& {
            return core.records.conditions.Color[swatch.quantity][swatch.index].BackColor;
        };
        list.property(latin(swatch.colour), {I4, u"colour of the level, 0x00BBGGRR"_s},
                      answering([colour](Core& core) { return colour(core).value(); }),
                      [colour](Core& core, QVariantList& arguments) {
                          const int value = arguments[0].toInt();
                          if (value < 0 || value > 0xFFFFFF)
                              return failed(u"a colour is 0 to 0xFFFFFF"_s);
                          colour(core) = value;
                          return answered();
                      });
    }
    addSensorFamily(list, ofSensor, {"ColorDark", "ColorLight", "ColorVLight"});
}

void addDescription(MemberList& list, const Swatch& swatch) {
    list.property(
        latin(swatch.description), {Text, u"description of the level"_s},
        answering([swatch](Core& core) {
            return core.records.conditions.Color[swatch.quantity][swatch.index].Caption.value();
        }),
        [swatch](Core& core, QVariantList& arguments) {
            ConditionControls& controls = core.records.conditions;
            const QString text = arguments[0].toString();
            controls.Color[swatch.quantity][swatch.index].Caption = text;
            controls.Cond[swatch.quantity][swatch.index].Caption = text;
            return answered();
        });
}

void addDescriptions(MemberList& list) {
    addSensorFamily(list, {Text, u"description in Kiv_Nubilo"_s},
                    {"DescriptionClear", "DescriptionCloudy", "DescriptionVCloudy",
                     "DescriptionDry", "DescriptionWet", "DescriptionRain", "DescriptionDark",
                     "DescriptionLight", "DescriptionVLight"});
    for (std::size_t i = 0; i < kFirstTemperature; ++i)
        addDescription(list, kSwatches[i]);
    for (const auto& [name, quantity, index] : kSectorNames) {
        list.get(latin(name),
                 {Text, u"direction sector of the level: from, to, minutes"_s, Activity::None},
                 answering([quantity = quantity, index = index](Core& core) {
                     return core.records.conditions.Direction[quantity][index].Caption.value();
                 }));
    }
    for (std::size_t i = kFirstTemperature; i < kSwatches.size(); ++i)
        addDescription(list, kSwatches[i]);
}

struct AlarmBox {
    const char* level;
    Quantity quantity;
    std::size_t index;

    CheckBox& of(Core& core) const { return core.records.alarms.Alarm[quantity][index]; }
};

constexpr std::array<AlarmBox, 9> kAlarms{{
    {"Clear", Quantity::Cloud, 0},
    {"Cloudy", Quantity::Cloud, 1},
    {"Overcast", Quantity::Cloud, 2},
    {"Dry", Quantity::Rain, 0},
    {"Wet", Quantity::Rain, 1},
    {"Rain", Quantity::Rain, 2},
    {"Dark", Quantity::Brightness, 0},
    {"Light", Quantity::Brightness, 1},
    {"VLight", Quantity::Brightness, 2},
}};

// A value that a check box does not have must not end up as "not checked".
bool isCheckValue(const QVariant& value) {
    return value.toInt() == 0 || value.toInt() == 1;
}

AutomationReply noCheckValue() {
    return failed(u"a check box is 0 or 1"_s);
}

// An alarm without a sound has no icons and is off.
void settleAlarm(CheckBox& box) {
    const bool hasSound = !box.Tag.value().isEmpty();
    SetAlarmIcons(box, hasSound);
    if (!hasSound)
        box.set(0);
}

void addAlarms(MemberList& list) {
    for (const AlarmBox& alarm : kAlarms) {
        list.property(
            u"Alarm"_s + latin(alarm.level),
            {I4, u"1: the alarm of the level is on, 0: it is not; only with a sound"_s},
            answering([alarm](Core& core) { return alarm.of(core).Value.value(); }),
            [alarm](Core& core, QVariantList& arguments) {
                if (!isCheckValue(arguments[0]))
                    return noCheckValue();
                CheckBox& box = alarm.of(core);
                box.set(arguments[0].toInt());
                settleAlarm(box);
                return answered();
            },
            true);
    }
    for (const AlarmBox& alarm : kAlarms) {
        list.property(
            u"Sound"_s + latin(alarm.level), {Text, u"sound file of the level's alarm"_s},
            answering([alarm](Core& core) { return alarm.of(core).Tag.value(); }),
            [alarm](Core& core, QVariantList& arguments) {
                CheckBox& box = alarm.of(core);
                box.Tag = arguments[0].toString();
                settleAlarm(box);
                return answered();
            },
            true);
    }
}

void addUnsafe(MemberList& list) {
    for (const auto& [name, quantity, index] : kUnsafeNames) {
        const auto box = [quantity = quantity, index = index](Core& core) -> CheckBox& {
            return core.records.conditions.Cond[quantity][index];
        };
        list.property(
            latin(name), {I4, u"1: the level makes the sky unsafe, 0: it does not"_s},
            answering([box](Core& core) { return box(core).Value.value(); }),
            [box](Core& core, QVariantList& arguments) {
                if (!isCheckValue(arguments[0]))
                    return noCheckValue();
                box(core).set(arguments[0].toInt());
                return answered();
            },
            true);
    }
}

void addCorrection(MemberList& list) {
    const QString on = u"TempFactorON"_s;
    list.property(on,
                  {Bool, u"whether Kiv_Nubilo corrects the sky temperature"_s, Activity::Signal,
                   Source::Sensor},
                  forwardedRead(on, Bool), [on](Core& core, QVariantList& arguments) {
                      const AutomationReply stored = writeToSensor(core, on, arguments[0]);
                      return stored.ok() ? callSensorForm(core, u"CloudTempSet"_s, {arguments[0]})
                                         : stored;
                  });
    addSensorFamily(
        list, {I4, u"factor of that correction"_s},
        {"TempFactorK1", "TempFactorK2", "TempFactorK3", "TempFactorK4", "TempFactorK5"});
}

void addRest(MemberList& list) {
    const auto suspend = [](Core& core) -> CheckBox& {
        return core.records.alarms.SuspendSoundAlarm;
    };
    list.property(u"AlarmSuspendSound"_s, {I4, u"1: condition alarms are silent, 0: they sound"_s},
                  answering([suspend](Core& core) { return suspend(core).Value.value(); }),
                  [suspend](Core& core, QVariantList& arguments) {
                      if (!isCheckValue(arguments[0]))
                          return noCheckValue();
                      suspend(core).set(arguments[0].toInt());
                      return answered();
                  });
    addSensorFamily(list, {I4, u"failed readings that Kiv_Nubilo tolerates"_s},
                    {"NoConsecutiveUnknownReads", "NoConsecutiveRS232Errors"});
    list.property(
        u"ReadCycle"_s, {I4, u"read interval in seconds: 5, 10, 30 or 60"_s},
        answering([](Core& core) { return core.records.session.RefreshRead.chosenSeconds(); }),
        [](Core& core, QVariantList& arguments) {
            selectReadCycle(core.records.session.RefreshRead, arguments[0].toInt());
            return answered();
        });
}

} // namespace

void addSettingMembers(MemberList& list) {
    addSensorThresholds(list);
    addLimits(list);
    addColours(list);
    addDescriptions(list);
    addAlarms(list);
    addUnsafe(list);
    addCorrection(list);
    addRest(list);
}

} // namespace skyhold
