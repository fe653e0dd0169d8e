// SPDX-License-Identifier: GPL-3.0-or-later
// The six graphs, which of them are drawn, their colours and the time that they span.
#pragma once

#include "core/monitoring_core.h"

class QWidget;

namespace skyhold {

QWidget* makeGraphsPage(MonitoringCore& core, QWidget* parent);

} // namespace skyhold
