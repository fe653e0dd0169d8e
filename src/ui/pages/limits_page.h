// All that makes the sky unsafe: limits, levels, sectors and alarms of the quantities in one table,
// and beside it what else counts.
#pragma once

#include "core/monitoring_core.h"

class QWidget;

namespace skyhold {

// `core` outlives the page.
QWidget* makeLimitsPage(MonitoringCore& core, QWidget* parent);

} // namespace skyhold
