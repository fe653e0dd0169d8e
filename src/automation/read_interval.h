// The read interval as automation clients see it: whole seconds.
#pragma once

#include "records/controls.h"

namespace skyhold {

// 5, 10, 30 or 60, from the first two characters of the selected entry ("5  secs").
std::int32_t readCycleSeconds(const ComboBox& refreshRead);

// Selects, as the user would, the shortest interval that is not below `seconds`; above 60 it is the
// second entry, 10 seconds.
void selectReadCycle(ComboBox& refreshRead, std::int32_t seconds);

} // namespace skyhold
