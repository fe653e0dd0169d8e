// SPDX-License-Identifier: GPL-3.0-or-later
// The end of the program by a library that calls exit() from deep inside, as the display's does
// when its connection breaks.
#pragma once

#include <functional>

namespace skyhold {

// Calls `work` once when the thread that set it calls exit(), before anything else is destroyed:
// all objects on that thread's stack are still whole. An empty function takes it back.
void onSuddenExit(std::function<void()> work);

} // namespace skyhold
