// What each command does. A command writes its answer, tells what went wrong on standard error, and
// answers the exit status; a failed write is left to whoever closes standard output.
#pragma once

#include "ctl/command_line.h"
#include "ctl/members.h"
#include "ctl/monitor_connection.h"

namespace skyhold {

int runCommand(const Command& command);

// The members of the attached monitor; none when they cannot be had, `fault` says why.
std::vector<Member> describedMembers(MonitorConnection& monitor, QString& fault);

// Why the member cannot be read, with a hint; empty when it can.
QString notReadable(const Member& member);

} // namespace skyhold
