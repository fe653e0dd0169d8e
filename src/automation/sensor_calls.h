// SPDX-License-Identifier: GPL-3.0-or-later
// Calls that are passed on to the sensor program for a client. Every failure, a missing object and
// an answer of the wrong type among them, becomes the automation error Exception, so that no client
// takes a default for a reading.
#pragma once

#include "automation/public_member.h"

namespace skyhold {

AutomationReply readFromSensor(MonitoringCore& core, const QString& name, AutomationType type,
                               QVariantList arguments = {});
AutomationReply writeToSensor(MonitoringCore& core, const QString& name, const QVariant& value);
AutomationReply callSensor(MonitoringCore& core, const QString& name, QVariantList arguments);

// A control on the sensor program's main window ("MForm"), by its number in an array if it is in
// one: its "Value" is set.
struct FormControl {
    const char* name;
    std::optional<int> element;
};
AutomationReply writeToSensorForm(MonitoringCore& core, const FormControl& control,
                                  const QVariant& value);
AutomationReply callSensorForm(MonitoringCore& core, const QString& name, QVariantList arguments);

// A member that passes its name on: a method or a get, and a let.
MemberAct forwardedRead(const QString& name, AutomationType type);
MemberAct forwardedLet(const QString& name);

} // namespace skyhold
