// SPDX-License-Identifier: GPL-3.0-or-later
// The heartbeat of a session: one cycle reads both sources, judges them and publishes the verdict.
#pragma once

#include "core/monitoring_core.h"

namespace skyhold {

// Runs one cycle at once, then arms the timer with the chosen interval.
void StartReading(MonitoringCore& core);
void StopReading(MonitoringCore& core);

// Whether the station's units are those in force; a change is the cycle's.
bool unitsStay(const StationObservation& station, const MonitoringCore& core);

// The whole cycle, step by step.
void RunReadCycle(MonitoringCore& core);

} // namespace skyhold
