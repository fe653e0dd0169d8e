// SPDX-License-Identifier: GPL-3.0-or-later
// The 16 points of the compass, clockwise from north, 22.5 degrees apart.
#pragma once

#include <array>

namespace skyhold {

inline constexpr std::array kCompassPoints{"N", "NNE", "NE", "ENE", "E", "ESE", "SE", "SSE",
                                           "S", "SSW", "SW", "WSW", "W", "WNW", "NW", "NNW"};

} // namespace skyhold
