// SPDX-License-Identifier: GPL-3.0-or-later
// Signals that ask the uploader to end.
#pragma once

#include <sys/types.h>

namespace skyhold {

// SIGTERM, SIGINT and SIGHUP: at once. SIGUSR1, the key "{F6}": after the current file.
void catchQuitSignals();

bool quitAtOnce();
bool quitAfterThisFile(); // or at once

// Every such signal goes on to that process, too; 0: to none.
void passQuitSignalsOnTo(pid_t process);

} // namespace skyhold
