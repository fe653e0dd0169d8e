// SPDX-License-Identifier: GPL-3.0-or-later
// What the monitor's reader sees in a station's file, with the monitor's settings.
#pragma once

#include "ctl/command_line.h"

namespace skyhold {

int runCheckStation(const Command& command);

} // namespace skyhold
