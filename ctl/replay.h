// SPDX-License-Identifier: GPL-3.0-or-later
// The command "replay": the recorded weather by the limits in force, and by others.
#pragma once

#include "ctl/command_line.h"

namespace skyhold {

int runReplay(const Command& command);

} // namespace skyhold
