// SPDX-License-Identifier: GPL-3.0-or-later
// A monitoring session: the period in which the sources are read and the verdict is published.
#pragma once

#include "core/monitoring_core.h"

namespace skyhold {

// The Start button, menu entry and tray entry. Nothing while a session runs or starts, nor while a
// limit is refused that is being typed: a message says so. A start that fails ends with its
// messages, which the user answers.
void StartSession(MonitoringCore& core);

// Ends the session, or a start that still waits.
void StopSession(MonitoringCore& core);

// The Stop button, menu entry and tray entry: first asks about an open roof, where the user wants
// that.
void StopByUser(MonitoringCore& core);

// For automation clients: as the buttons, only when there is something to do; the Stop button is
// hidden afterwards. A refused limit is dropped, and what a start that fails has to say is shown as
// a notice, so that the client has its answer at once.
void Device_Start(MonitoringCore& core);
void Device_Stop(MonitoringCore& core);

// Unlocks (idle) or locks the configuration controls.
void SetIdleControls(Records& records, bool idle);

// Recomputes what the main menu and the tray menu offer.
void UpdateMenus(Records& records);

} // namespace skyhold
