// The verdict of now, large enough to be read from afar, or that there is none.
#pragma once

#include "core/monitoring_core.h"

class QWidget;

namespace skyhold {

constexpr int kVerdictHeight = 128;

QWidget* makeVerdictCard(MonitoringCore& core, QWidget* parent);

} // namespace skyhold
