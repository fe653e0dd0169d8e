// What is known of the sky after nobody has looked at it.
#pragma once

#include "core/monitoring_core.h"

namespace skyhold {

// The read timer is overdue: the machine slept, or something held the program. The last verdict
// is of then. It becomes unsafe at once, whoever asks first; the return to safe waits for its delay
// anew, and the station file must prove its age as at the begin of a session. A client that has
// control of the verdict keeps it.
void distrustAfterGap(MonitoringCore& core);

// The verdict is unsafe at once, and the way back to safe waits for its delay from the start.
void distrustVerdict(Records& records, const QString& cause);

} // namespace skyhold
