// SPDX-License-Identifier: GPL-3.0-or-later
// A wind-direction sector and the time for which the wind must have blown from it.
#pragma once

namespace skyhold {

// Whole degrees, bounds included; a negative `from` wraps through north. Whole minutes.
struct Sector {
    int from = 0;
    int to = 0;
    int minutes = 0;
    bool operator==(const Sector&) const = default;
};

} // namespace skyhold
