// SPDX-License-Identifier: GPL-3.0-or-later
// The command "why": the state document in words, of now or of a moment of the past.
#pragma once

#include "ctl/command_line.h"

namespace skyhold {

int runWhy(const Command& command);

} // namespace skyhold
