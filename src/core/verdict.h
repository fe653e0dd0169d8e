// SPDX-License-Identifier: GPL-3.0-or-later
// The verdict between two cycles: who decides, and when what was decided no longer counts.
#pragma once

#include "core/monitoring_core.h"

namespace skyhold {

// Now, on both clocks.
Moment momentOf(const Clock& clock);

// An automation client has control of the verdict.
inline bool clientDecides(const MonitoringCore& core) {
    return !core.controllers.empty();
}

// Outside a cycle: everything that holds the verdict, and those who follow it.
void showVerdict(MonitoringCore& core);

// The client that has control sets the verdict (true: unsafe).
void setVerdict(MonitoringCore& core, bool unsafe);

// The read timer is overdue: the machine slept, or something held the program. The last verdict is
// from before that. It becomes unsafe at once, whoever asks first; the return to safe waits for its
// whole delay again, and the station file must prove its age as at the beginning of a session. A
// client that has control of the verdict keeps it.
void distrustAfterGap(MonitoringCore& core);

// The last verdict counts no longer, for the reason given: unsafe, until the whole safe delay has
// passed.
void distrustVerdict(MonitoringCore& core, const QString& reason);

} // namespace skyhold
