// SPDX-License-Identifier: GPL-3.0-or-later
#include "automation/sensor_calls.h"

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

AutomationReply asException(AutomationReply reply, const QString& name) {
    return reply.ok() ? std::move(reply) : failed(name + u": "_s + reply.text);
}

std::unique_ptr<DispatchObject> sensorForm(SensorLink& sensor) {
    QVariantList none;
    const AutomationReply form = sensor.forward(u"MForm"_s, kRead, none);
    return form.ok() ? sensor.object(form.result) : nullptr;
}

AutomationReply noObject(const QString& name) {
    return failed(name + u": Kiv_Nubilo has no such object"_s);
}

} // namespace

AutomationReply readFromSensor(MonitoringCore& core, const QString& name, AutomationType type,
                               QVariantList arguments) {
    AutomationReply reply = core.sensor.forward(name, kRead, arguments);
    if (!reply.ok())
        return asException(std::move(reply), name);
    const std::optional<QVariant> typed = convertTo(type, reply.result);
    return typed ? answered(*typed) : failed(name + u": the answer has the wrong type"_s);
}

AutomationReply writeToSensor(MonitoringCore& core, const QString& name, const QVariant& value) {
    QVariantList arguments{value};
    return asException(core.sensor.forward(name, kPropertyPut, arguments), name);
}

AutomationReply callSensor(MonitoringCore& core, const QString& name, QVariantList arguments) {
    return asException(core.sensor.forward(name, kMethod, arguments), name);
}

AutomationReply writeToSensorForm(MonitoringCore& core, const FormControl& control,
                                  const QVariant& value) {
    const QString name = QString::fromLatin1(control.name);
    const std::unique_ptr<DispatchObject> form = sensorForm(core.sensor);
    if (!form)
        return noObject(u"MForm"_s);
    QVariantList index;
    if (control.element)
        index.append(*control.element);
    const AutomationReply found = form->invoke(name, kRead, index);
    if (!found.ok())
        return asException(found, name);
    const std::unique_ptr<DispatchObject> box = form->object(found.result);
    if (!box)
        return noObject(name);
    QVariantList arguments{value};
    return asException(box->invoke(u"Value"_s, kPropertyPut, arguments), name);
}

AutomationReply callSensorForm(MonitoringCore& core, const QString& name, QVariantList arguments) {
    const std::unique_ptr<DispatchObject> form = sensorForm(core.sensor);
    if (!form)
        return noObject(u"MForm"_s);
    return asException(form->invoke(name, kMethod, arguments), name);
}

MemberAct forwardedRead(const QString& name, AutomationType type) {
    return [name, type](MonitoringCore& core, QVariantList& arguments) {
        return readFromSensor(core, name, type, arguments);
    };
}

MemberAct forwardedLet(const QString& name) {
    return [name](MonitoringCore& core, QVariantList& arguments) {
        return writeToSensor(core, name, arguments[0]);
    };
}

} // namespace skyhold
