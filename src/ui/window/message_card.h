// SPDX-License-Identifier: GPL-3.0-or-later
// What the panel says of the verdict: its cause and the delay, who decides when the rules do not,
// the alarm messages, and Stop Alarm.
#pragma once

#include "core/monitoring_core.h"
#include "ui/window/panel_parts.h"

#include <vector>

namespace skyhold {

// `ofSession` gets the readouts that have a colour only while a session runs.
PanelPart makeMessageCard(MonitoringCore& core, QWidget* parent, std::vector<Readout*>& ofSession);

} // namespace skyhold
