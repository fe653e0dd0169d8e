// SPDX-License-Identifier: GPL-3.0-or-later
// Where the roof's switch stands, and the buttons that begin and end a session.
#pragma once

#include "core/monitoring_core.h"
#include "ui/window/panel_parts.h"

#include <vector>

namespace skyhold {

// `ofSession` gets the readouts that have a colour only while a session runs.
PanelPart makeSessionCard(MonitoringCore& core, QWidget* parent, std::vector<Readout*>& ofSession);

} // namespace skyhold
