// SPDX-License-Identifier: GPL-3.0-or-later
// The sensor program's public members and objects, over whatever measures.
#pragma once

#include "bus/automation_server.h"
#include "sensorhost/sensor_source.h"

#include <QHash>
#include <QVariant>

namespace skyhold {

// What the members have beside their source. Lives as long as they are served.
struct SensorHost {
    SensorSource& source;
    // A client that sets a limit gets an error. Else limits are kept as they are written and change
    // nothing.
    bool limitsAreFixed = false;
    QString temperatureUnit = QStringLiteral("C"); // or "F"
    // Values that are kept for other programs and change nothing, by name.
    QHash<QString, QVariant> settings = {};
};

QString sensorProgramId();
// The object that "MForm" answers with.
QDBusObjectPath sensorFormPath();

std::shared_ptr<MemberTable> sensorMembers(SensorHost& host);

// Adds the object "MForm" with the controls below it to the server.
void addSensorForm(AutomationServer& server, SensorHost& host);

} // namespace skyhold
