// SPDX-License-Identifier: GPL-3.0-or-later
// The functions of FreeImage that writing a picture needs, with the types of its own header.
#pragma once

#include <FreeImage.h>

namespace skyhold {

struct ImageFunctions {
    decltype(&FreeImage_Allocate) Allocate = nullptr;
    decltype(&FreeImage_GetBits) GetBits = nullptr;
    decltype(&FreeImage_GetInfo) GetInfo = nullptr;
    decltype(&FreeImage_GetHeight) GetHeight = nullptr;
    decltype(&FreeImage_GetColorsUsed) GetColorsUsed = nullptr;
    decltype(&FreeImage_ConvertTo24Bits) ConvertTo24Bits = nullptr;
    decltype(&FreeImage_Save) Save = nullptr;
    decltype(&FreeImage_Unload) Unload = nullptr;
};

} // namespace skyhold
