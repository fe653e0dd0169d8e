// SPDX-License-Identifier: GPL-3.0-or-later
// The verdict of now, large enough to be read from afar, or that there is none.
#pragma once

#include "core/monitoring_core.h"
#include "ui/window/panel_parts.h"

namespace skyhold {

struct VerdictView {
    QWidget* card;
    std::function<void()> tick; // what it counts, each second
    std::function<void(const PanelSize&)> grow;
};
VerdictView makeVerdictCard(MonitoringCore& core, QWidget* parent);

} // namespace skyhold
