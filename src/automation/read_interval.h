// SPDX-License-Identifier: GPL-3.0-or-later
// The read interval as automation clients set it: whole seconds.
#pragma once

#include "records/controls.h"

namespace skyhold {

// Selects, as the user would, the shortest interval that is not below `seconds`; above 60 it is the
// second entry, 10 seconds.
void selectReadCycle(ComboBox& refreshRead, std::int32_t seconds);

} // namespace skyhold
