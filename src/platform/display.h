// SPDX-License-Identifier: GPL-3.0-or-later
// Whether there is a display to open a window on.
#pragma once

namespace skyhold {

// True when the display that the environment names can be reached. The window toolkit ends the
// program when it cannot, so this is asked before it is started.
bool displayReachable();

} // namespace skyhold
