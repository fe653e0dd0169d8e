// SPDX-License-Identifier: GPL-3.0-or-later
// The main window as an object of its own, for clients that ask for "MForm".
#pragma once

#include "bus/automation_server.h"
#include "core/monitoring_core.h"

namespace skyhold {

// Minimises the window or brings it back, and recomputes the menus.
void setWindowState(Records& records, WindowState state);

// Below the class factory's path.
inline constexpr char kFormName[] = "MForm";
QDBusObjectPath formPath();

std::shared_ptr<const MemberTable> formMembers(MonitoringCore& core);

} // namespace skyhold
