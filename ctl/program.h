// SPDX-License-Identifier: GPL-3.0-or-later
// What the programs of the command line have in common.
#pragma once

#include "ctl/command_line.h"

namespace skyhold {

// Reads the command line, runs the command and answers the exit status: whatever goes wrong ends
// with 2, so that nothing but a verdict that has reached its reader reads as safe.
int runProgram(int argc, char** argv, int (*run)(const Command&));

} // namespace skyhold
