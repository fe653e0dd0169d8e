// SPDX-License-Identifier: GPL-3.0-or-later
// A sensor program that answers from a table and notes every call as it sees it.
#pragma once

#include "bus/automation_client.h"

#include <QMap>
#include <QStringList>

#include <functional>
#include <memory>

namespace skyhold {

struct ScriptedSensor {
    QMap<QString, QVariant> values{
        {QStringLiteral("Version"), QStringLiteral("5.20.0001")},
        {QStringLiteral("Kiv_DeviceRole"), QStringLiteral("MASTER")},
        {QStringLiteral("DataReady"), true},
        {QStringLiteral("DeviceIsRunning"), true},
        {QStringLiteral("Kiv_XFERFileErr"), false},
        {QStringLiteral("Kiv_TemperatureUnits"), QStringLiteral("C")},
        {QStringLiteral("Condition_Cloud"), 1},
        {QStringLiteral("Condition_Rain"), 1},
        {QStringLiteral("Condition_Brightness"), 1},
        {QStringLiteral("SkyTemperature"), -25.25},
        {QStringLiteral("RainValue"), 2850.0},
        {QStringLiteral("BrightnessValue"), 61.0},
        {QStringLiteral("SkySensorTemperature"), 8.5},
        {QStringLiteral("AmbientTemperature"), 9.0},
        {QStringLiteral("RainHeaterPercent"), 20.0},
        {QStringLiteral("RainHeaterTemperature"), 31.5},
        {QStringLiteral("RainHeaterStatus"), QStringLiteral("Normal")},
        {QStringLiteral("LastReading"), QVariant::fromValue(AutomationDate{46342.5})},
        {QStringLiteral("SwitchStatus"), 2.0},
        {QStringLiteral("DescriptionClear"), QStringLiteral("Clear")},
        {QStringLiteral("DescriptionCloudy"), QStringLiteral("Cloudy")},
        {QStringLiteral("DescriptionVCloudy"), QStringLiteral("Overcast")},
        {QStringLiteral("DescriptionDry"), QStringLiteral("Dry")},
        {QStringLiteral("DescriptionWet"), QStringLiteral("Wet")},
        {QStringLiteral("DescriptionRain"), QStringLiteral("Rain")},
        {QStringLiteral("DescriptionDark"), QStringLiteral("Dark")},
        {QStringLiteral("DescriptionLight"), QStringLiteral("Light")},
        {QStringLiteral("DescriptionVLight"), QStringLiteral("Very Light")}};
    QStringList calls;     // "Name", "Name(i 2)", "Name=(b true)"
    bool present = true;   // a new object can be created
    bool answering = true; // calls succeed
    QStringList failing;   // but for these
    ObjectState state = ObjectState::Ready;
    bool creating = false; // a new object is still to come
    int created = 0;
    std::function<void(const QString& name)> onCall;

    CreateObject creator();
    QStringList takeCalls() { return std::exchange(calls, {}); }
};

inline QString argumentText(const QVariant& value) {
    switch (value.typeId()) {
    case QMetaType::Bool:
        return value.toBool() ? QStringLiteral("b true") : QStringLiteral("b false");
    case QMetaType::Int:
        return QStringLiteral("i %1").arg(value.toInt());
    case QMetaType::Short:
        return QStringLiteral("n %1").arg(value.toInt());
    case QMetaType::Double:
        return QStringLiteral("d %1").arg(value.toDouble());
    default:
        return QStringLiteral("s %1").arg(value.toString());
    }
}

// An instance, or, with the path of its members ("MForm.RainLimit."), an object of one, or what
// stands for an instance that is still to come.
class ScriptedObject : public DispatchObject {
  public:
    explicit ScriptedObject(ScriptedSensor& sensor, const QString& path = {}, bool awaited = false)
        : sensor_(sensor)
        , path_(path)
        , awaited_(awaited) {}
    ~ScriptedObject() override {
        if (path_.isEmpty() && (!awaited_ || sensor_.creating))
            sensor_.calls.append(QStringLiteral("released"));
    }

    AutomationReply invoke(const QString& member, unsigned use, QVariantList& arguments) override {
        if (sensor_.state == ObjectState::Hanging)
            return {{}, AutomationError::Fail, {}};
        return command(member, use, arguments);
    }
    AutomationReply command(const QString& member, unsigned use, QVariantList arguments) override {
        QStringList texts;
        for (const QVariant& argument : arguments)
            texts.append(argumentText(argument));
        const QString name = path_ + member;
        QString call = name;
        if (use == kPropertyPut)
            call += u'=';
        if (!texts.isEmpty())
            call += u'(' + texts.join(QStringLiteral(", ")) + u')';
        sensor_.calls.append(call);
        if (sensor_.onCall)
            sensor_.onCall(name);
        if (!sensor_.answering || sensor_.state != ObjectState::Ready ||
            sensor_.failing.contains(name))
            return {{}, AutomationError::Fail, {}};
        if (use == kPropertyPut)
            sensor_.values[name] = arguments.constLast();
        return {use == kRead ? sensor_.values.value(name) : QVariant(), AutomationError::None, {}};
    }
    std::unique_ptr<DispatchObject> object(const QVariant& answer) override {
        QString path = answer.value<QDBusObjectPath>().path();
        if (path.isEmpty())
            return nullptr;
        path = path.mid(1).replace(u'/', u'.') + u'.';
        return std::make_unique<ScriptedObject>(sensor_, path);
    }
    ObjectState state() const override {
        if (awaited_)
            return sensor_.creating ? ObjectState::Creating : ObjectState::Gone;
        return sensor_.state;
    }
    void beginCalls(const CallTime&) override {}

  private:
    ScriptedSensor& sensor_;
    QString path_;
    bool awaited_;
};

inline CreateObject ScriptedSensor::creator() {
    return [this](const QString&) -> std::unique_ptr<DispatchObject> {
        if (!present)
            return nullptr;
        if (creating)
            return std::make_unique<ScriptedObject>(*this, QString(), true);
        ++created;
        return std::make_unique<ScriptedObject>(*this);
    };
}

} // namespace skyhold
