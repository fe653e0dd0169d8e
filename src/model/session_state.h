// SPDX-License-Identifier: GPL-3.0-or-later
// A session: the period in which the sources are read and the verdict is published.
#pragma once

#include <cstdint>

namespace skyhold {

enum class SessionState : std::uint8_t {
    Idle,
    Starting, // waits for the sensor program's first data
    Running
};

// What the monitor says of the sky; None before the first decision of a session and without one.
enum class Verdict : std::uint8_t { None, Safe, Waiting, Unsafe };

} // namespace skyhold
