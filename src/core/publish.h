// SPDX-License-Identifier: GPL-3.0-or-later
// Publish: what becomes of a cycle, in order.
#pragma once

#include "core/monitoring_core.h"

namespace skyhold {

// Walks the outlets. One that fails is reported by its status code, and the next one runs.
void publish(MonitoringCore& core);

// Between two cycles, when the verdict has turned unsafe: alarm, sensor program, switch and display
// are told at once. Records, graphs and counters keep their cycles.
void publishUnsafe(MonitoringCore& core);

} // namespace skyhold
