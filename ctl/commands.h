// SPDX-License-Identifier: GPL-3.0-or-later
// What each command does. A command writes its answer, reports what went wrong on standard error,
// and returns the exit status; a failed write is reported when standard output is closed.
#pragma once

#include "ctl/command_line.h"
#include "ctl/members.h"
#include "ctl/monitor_connection.h"

namespace skyhold {

int runCommand(const Command& command);

// The members of the attached monitor; none when they are not available; `fault` says why.
std::vector<Member> describedMembers(MonitorConnection& monitor, QString& fault);

// Why the member cannot be read, with a hint; empty when it can.
QString notReadable(const Member& member);

} // namespace skyhold
