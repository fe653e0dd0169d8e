// SPDX-License-Identifier: GPL-3.0-or-later
// Recording of the user data file as part of the monitor: a start that fails shows code d13.
#pragma once

#include "core/monitoring_core.h"

namespace skyhold {

// The user chose 0 record or 1 stop.
void chooseRecording(MonitoringCore& core, int index);

// For automation clients: nothing is asked, `append` keeps what an existing file holds.
void startRecording(MonitoringCore& core, bool append);
void stopRecording(MonitoringCore& core);

// The line of a read cycle, when one is due. False when it is lost.
bool recordLine(MonitoringCore& core);

} // namespace skyhold
