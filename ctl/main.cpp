// SPDX-License-Identifier: GPL-3.0-or-later
// skyholdctl: queries and controls the monitor from the command line.
#include "ctl/commands.h"
#include "ctl/program.h"

int main(int argc, char** argv) {
    return skyhold::runProgram(argc, argv, skyhold::runCommand);
}
