// SPDX-License-Identifier: GPL-3.0-or-later
// Looks between two cycles. What they see can only turn the verdict unsafe, at once; the way back
// to safe is the cycle's.
#pragma once

#include "core/monitoring_core.h"

namespace skyhold {

// Begins the looks of a session, when the user wants them: each second at the sensor program's
// rain and cloud levels, and at the station's file whenever it changes.
void startQuickLooks(MonitoringCore& core);
void stopQuickLooks(MonitoringCore& core);

} // namespace skyhold
