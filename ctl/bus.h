// SPDX-License-Identifier: GPL-3.0-or-later
// A connection to the session bus that nothing can hold for long, and what its faults mean.
#pragma once

#include <QDBusConnection>
#include <QDBusError>
#include <QString>

namespace skyhold {

// A connection of its own name; end it with disconnectFromBus. It may be unconnected. A bus that
// hangs ends the program, with status 2.
QDBusConnection connectToBus();

// Nobody has the monitor's name on the bus.
bool isAbsence(const QDBusError& error);

// Why there is no connection.
QString busFault(const QDBusConnection& bus);
// Why the monitor did not answer.
QString monitorFault(const QDBusError& error);
QString oddAnswer();

} // namespace skyhold
