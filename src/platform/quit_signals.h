// SPDX-License-Identifier: GPL-3.0-or-later
// Signals that ask for the program's end as an event, and those that must not end it.
#pragma once

#include <functional>

namespace skyhold {

// Calls `quit` from the event loop when SIGTERM, SIGINT or SIGHUP (the terminal or the login has
// gone; not where it was ignored at the start) arrives; an application must exist. To be set once.
// From then on a reader that has gone and a file that may not grow are failed writes, which would
// otherwise end the program: SIGPIPE and SIGXFSZ are ignored.
void onQuitSignal(std::function<void()> quit);

} // namespace skyhold
