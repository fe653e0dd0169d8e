// SPDX-License-Identifier: GPL-3.0-or-later
// Follows the monitor for as long as anybody reads.
#pragma once

#include "ctl/command_line.h"

namespace skyhold {

// A line with its time for every change: of the status, or of each member named. A monitor that
// goes or hangs is a change too, and it is looked for again; it is never started. Ends only when a
// member cannot be watched or nobody reads any more.
int runWatch(const Command& command);

} // namespace skyhold
