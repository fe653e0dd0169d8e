// SPDX-License-Identifier: GPL-3.0-or-later
// Every member once, without and with the sensor program: what it answers, what reaches the sensor
// program, and what shows as activity, as the table says. docs/automation.md, which is compared
// with the table, holds on to what the table says.
#include "automation/all_members.h"
#include "nubilo_fixture.h"

namespace skyhold {
namespace {

using EveryMember = NubiloFixture;

// What reaches the sensor program, where it is not the member's own name alone.
const QMap<QString, QString> kForwarded{
    {u"get VersionNB"_s, u"Version"_s},
    {u"method Kiv_XFERFileErr"_s, u"XFERFileErr"_s},
    {u"get Kiv_DeviceSwitchCtrl"_s, QString()},
    {u"let Kiv_DeviceSwitchCtrl"_s, u"Kiv_DeviceRole"_s},
    {u"get Kiv_CloudAlarmDelay"_s, u"Kiv_CloudAlarmDelay"_s},
    {u"let Kiv_CloudAlarmDelay"_s, u"Kiv_CloudAlarmDelay=(i 1)"_s},
    {u"let ThreshRainRain"_s,
     u"ThreshRainRain=(d 2.5); MForm; MForm.UnknowRainLT; MForm.UnknowRainLT.Value=(d 2.5)"_s},
    {u"let RainUnknowConditionValue"_s,
     u"RainUnknowConditionValue=(i 1); MForm; MForm.RainLimit(i 2); MForm.RainLimit.Value=(i 1)"_s},
    {u"let ThreshTempVCloudy"_s,
     u"ThreshTempVCloudy=(d 2.5); MForm; MForm.UnknowCloudGT; MForm.UnknowCloudGT.Value=(d 2.5)"_s},
    {u"let CloudUnknowConditionValue"_s,
     u"CloudUnknowConditionValue=(i 1); MForm; MForm.CloudLimit(i 2); "
     "MForm.CloudLimit.Value=(i 1)"_s},
    {u"let TempFactorON"_s, u"TempFactorON=(b true); MForm; MForm.CloudTempSet(b true)"_s},
    {u"method Kiv_GraphArrayFirstElem"_s, u"Kiv_GraphArrayFirstElem(i 1)"_s},
    {u"method Kiv_GraphArrayLastElem"_s, u"Kiv_GraphArrayLastElem(i 1)"_s},
    {u"method GraphTemperatureMax"_s, u"GraphTemperatureMax(n 0)"_s},
    {u"method GraphTemperatureMin"_s, u"GraphTemperatureMin(n 0)"_s},
    {u"method GetGraphCycle"_s, u"ReadCycle"_s},
    {u"method SetUnSafe"_s, u"SetUnSafe(b true)"_s}, // Kiv_LocalControl has been called before it
    {u"method GetGraphFreq"_s, u"GetGraphFreq(i 0)"_s}};

// Those whose client is told that the sensor program is missing. The delay of the cloud alarm is
// kept here, too.
bool isUnchecked(const PublicMember& member) {
    return member.source == Source::SensorUnchecked && member.name != u"Kiv_CloudAlarmDelay"_s;
}

bool asksSensor(const PublicMember& member) {
    return member.source == Source::Sensor || isUnchecked(member);
}

QVariant valueOf(AutomationType type) {
    switch (type) {
    case AutomationType::I4:
        return 1;
    case AutomationType::R8:
        return 2.5;
    case AutomationType::Bool:
        return true;
    case AutomationType::Text:
        return u"C"_s;
    case AutomationType::Variant:
        return QVariantList{1.5, 2};
    case AutomationType::Object:
        return QVariant::fromValue(QDBusObjectPath());
    default:
        return {};
    }
}

// Graph 1 is the sensor program's; for the members with "iP" it is 0 that asks the sensor program.
QVariantList argumentsOf(const PublicMember& member) {
    QVariantList arguments;
    for (const AutomationParameter& parameter : member.parameters)
        arguments.append(parameter.name == u"iP"_s && parameter.type == AutomationType::I4
                             ? QVariant(0)
                             : valueOf(parameter.type));
    return arguments;
}

QString kindAndName(const PublicMember& member) {
    const QString kind = member.use == kMethod        ? u"method "_s
                         : member.use == kPropertyGet ? u"get "_s
                                                      : u"let "_s;
    return kind + member.name;
}

bool hasType(const QVariant& value, AutomationType type) {
    return type == AutomationType::Variant || type == AutomationType::Date ||
           value.metaType() == valueOf(type).metaType();
}

TEST_F(EveryMember, withoutTheSensorProgram) {
    for (const PublicMember& member : allMembers()) {
        SCOPED_TRACE(qPrintable(kindAndName(member)));
        if (member.name == u"Device_Start"_s)
            continue; // it would bring the sensor program
        const int before = callsShown();
        clock_.advanceSeconds(7);
        const AutomationReply reply = use(member.name, member.use, argumentsOf(member));
        if (isUnchecked(member)) {
            EXPECT_EQ(reply.error, AutomationError::Exception);
        } else {
            EXPECT_TRUE(reply.ok()) << qPrintable(reply.text);
            EXPECT_TRUE(hasType(reply.result, member.result)) << reply.result.typeName();
        }
        if (member.source == Source::Sensor && reply.result.isValid()) {
            EXPECT_FALSE(reply.result.toBool());
            EXPECT_TRUE(reply.result.toString().isEmpty() || reply.result.toDouble() == 0);
        }
        const bool shows = member.activity != Activity::None && member.source != Source::Sensor;
        EXPECT_EQ(callsShown(), before + (shows ? 1 : 0));
        EXPECT_EQ(records().session.LastTimedCall == clock_.MsClock(),
                  member.activity == Activity::SignalWithPeriod);
        EXPECT_EQ(sensor_.takeCalls(), QStringList());
    }
    EXPECT_EQ(records().conditions.CloudAlarmDelay, 1); // kept here without the sensor program, too
}

TEST_F(EveryMember, withTheSensorProgram) {
    for (const PublicMember& member : allMembers()) {
        if (asksSensor(member) && member.use != kPropertyPut)
            sensor_.values.insert(member.name, valueOf(member.result));
    }
    const auto path = [](const char* text) {
        return QVariant::fromValue(QDBusObjectPath(QString::fromLatin1(text)));
    };
    sensor_.values.insert({{u"XFERFileErr"_s, true},
                           {u"ReadCycle"_s, 10},
                           {u"Kiv_CloudAlarmDelay"_s, 300},
                           {u"Kiv_DeviceRole"_s, u"MASTER"_s},
                           {u"MForm"_s, path("/MForm")},
                           {u"MForm.UnknowRainLT"_s, path("/MForm/UnknowRainLT")},
                           {u"MForm.RainLimit"_s, path("/MForm/RainLimit")},
                           {u"MForm.UnknowCloudGT"_s, path("/MForm/UnknowCloudGT")},
                           {u"MForm.CloudLimit"_s, path("/MForm/CloudLimit")}});
    connectSensor();

    for (const PublicMember& member : allMembers()) {
        SCOPED_TRACE(qPrintable(kindAndName(member)));
        if (member.name.startsWith(u"Device_"_s) || member.name == u"Kiv_DeviceStop"_s)
            continue; // a session's own calls
        const int before = callsShown();
        const AutomationReply reply = use(member.name, member.use, argumentsOf(member));
        EXPECT_TRUE(reply.ok()) << qPrintable(reply.text);
        EXPECT_TRUE(hasType(reply.result, member.result)) << reply.result.typeName();
        EXPECT_EQ(callsShown(), before + (member.activity == Activity::None ? 0 : 1));

        QString expected = asksSensor(member) ? member.name : QString();
        if (asksSensor(member) && member.use == kPropertyPut)
            expected += u"=("_s + argumentText(argumentsOf(member)[0]) + u')';
        EXPECT_EQ(sensor_.takeCalls().join(u"; "_s),
                  kForwarded.value(kindAndName(member), expected));
    }
    // The sensor program's arrays are passed on as they are.
    EXPECT_EQ(read(u"Kiv_GraphArrayRain"_s), QVariant(QVariantList{1.5, 2}));
}

// A client never takes a default for a reading: whatever fails, it is told.
TEST_F(EveryMember, ofAFailingSensorProgram) {
    connectSensor();
    sensor_.answering = false;
    for (const PublicMember& member : allMembers()) {
        if (!asksSensor(member) || kindAndName(member) == u"get Kiv_DeviceSwitchCtrl"_s)
            continue;
        EXPECT_EQ(use(member.name, member.use, argumentsOf(member)).error,
                  AutomationError::Exception)
            << qPrintable(member.name);
    }
    EXPECT_EQ(read(u"Kiv_CloudAlarmDelay"_s), 0);

    sensor_.answering = true;
    for (const PublicMember& member : allMembers()) {
        const bool number =
            member.result == AutomationType::I4 || member.result == AutomationType::R8;
        if (member.source == Source::Sensor && number) {
            sensor_.values[member.name] = u"wrong"_s;
            EXPECT_EQ(use(member.name, member.use).error, AutomationError::Exception)
                << qPrintable(member.name);
        }
    }
    // The control that a limit is copied to is missing: the client is told, the limit is stored.
    EXPECT_EQ(use(u"ThreshRainRain"_s, kPropertyPut, {7.5}).error, AutomationError::Exception);
    EXPECT_EQ(sensor_.values.value(u"ThreshRainRain"_s), 7.5);
}

} // namespace
} // namespace skyhold
