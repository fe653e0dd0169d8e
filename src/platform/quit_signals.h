// SIGTERM and SIGINT as an event.
#pragma once

#include <functional>

namespace skyhold {

// Calls `quit` from the event loop when SIGTERM or SIGINT arrives; an application must exist.
// To be set once.
void onQuitSignal(std::function<void()> quit);

} // namespace skyhold
