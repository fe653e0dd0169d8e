// SPDX-License-Identifier: GPL-3.0-or-later
// This program's automation object "Kiv_Skyhold.Nubilo" on the session bus.
#pragma once

#include "bus/automation_server.h"
#include "core/monitoring_core.h"

#include <QDBusConnection>

#include <memory>

namespace skyhold {

// The server over `core`; every instance counts as one attached client while it lives. A client's
// control of the verdict ends when it goes, so that no verdict stays frozen behind a dead one.
std::unique_ptr<AutomationServer> makeAutomationObject(const QDBusConnection& bus,
                                                       MonitoringCore& core);

} // namespace skyhold
