// Publish: what becomes of a cycle, in order.
#pragma once

#include "core/monitoring_core.h"

namespace skyhold {

// Walks the outlets. One that fails is reported by its status code, and the next one runs.
void publish(MonitoringCore& core);

} // namespace skyhold
