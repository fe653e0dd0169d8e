// SPDX-License-Identifier: GPL-3.0-or-later
// The roof, where this monitor drives its switch: whether it goes where it is told, and what
// becomes of an open one when the monitoring ends.
#pragma once

#include "core/monitoring_core.h"

namespace skyhold {

// Once per cycle, after the command: compares what the switch reads with what it was told. A
// difference that lasts longer than the user allows is a fault, with an alarm of its own.
void checkRoof(MonitoringCore& core);

// Asks the user before a roof that is open is left alone. False when the user wants to go on
// monitoring.
bool askAboutRoof(MonitoringCore& core);

// Closes the roof before the session ends, where the user wants that.
void closeRoofAtStop(MonitoringCore& core);

} // namespace skyhold
