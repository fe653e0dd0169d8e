// SPDX-License-Identifier: GPL-3.0-or-later
// skyholdctl-history: the commands of skyholdctl that need the database, the rules or a broker. A
// program of its own, because loading these takes longer than a question to the monitor, which may
// be asked every second.
#include "ctl/check_station.h"
#include "ctl/fleet.h"
#include "ctl/history.h"
#include "ctl/program.h"
#include "ctl/replay.h"
#include "ctl/verdict.h"
#include "ctl/why.h"

using namespace skyhold;

namespace {

int runHistoryCommand(const Command& command) {
    if (command.name == u"history")
        return runHistory(command);
    if (command.name == u"why")
        return runWhy(command);
    if (command.name == u"check-station")
        return runCheckStation(command);
    if (command.name == u"fleet")
        return runFleet(command);
    return command.name == u"replay" ? runReplay(command) : kStatusFailed;
}

} // namespace

int main(int argc, char** argv) {
    return runProgram(argc, argv, runHistoryCommand);
}
