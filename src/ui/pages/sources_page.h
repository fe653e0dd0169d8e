// SPDX-License-Identifier: GPL-3.0-or-later
// Where the data comes from: the weather station's file with its units, and the sensor program.
#pragma once

#include "core/monitoring_core.h"

class QWidget;

namespace skyhold {

// Choosing a station file saves its path at once in the core's settings.
QWidget* makeSourcesPage(MonitoringCore& core, QWidget* parent);

} // namespace skyhold
