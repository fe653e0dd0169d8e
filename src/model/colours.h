// SPDX-License-Identifier: GPL-3.0-or-later
// Display colours, laid out 0x00BBGGRR (blue in the high byte).
#pragma once

#include <cstdint>

namespace skyhold {

using Colour = std::int32_t;

inline constexpr Colour kRed = 0x0000FF;        // error, unsafe
inline constexpr Colour kGreen = 0x00FF00;      // good value, safe
inline constexpr Colour kYellow = 0x00FFFF;     // missing value; a level that counts as safe
inline constexpr Colour kCyan = 0xFFFF00;       // header of a working source
inline constexpr Colour kNavy = 0x800000;       // neutral status
inline constexpr Colour kDarkGreen = 0x008000;  // progress
inline constexpr Colour kGrey = 0xC0C0C0;       // lamp off
inline constexpr Colour kOrange = 0x0080FF;     // a level that counts as unsafe
inline constexpr Colour kCallColour = 0x80FFFF; // automation activity

inline constexpr Colour kSwatchGreen = 0xC0FFC0;
inline constexpr Colour kSwatchYellow = 0xC0FFFF;
inline constexpr Colour kSwatchOrange = 0xC0E0FF;

} // namespace skyhold
