// SPDX-License-Identifier: GPL-3.0-or-later
#include "automation/read_interval.h"

namespace skyhold {

void selectReadCycle(ComboBox& refreshRead, std::int32_t seconds) {
    int entry = 1;
    if (seconds <= 5)
        entry = 0;
    else if (seconds > 10 && seconds <= 30)
        entry = 2;
    else if (seconds > 30 && seconds <= 60)
        entry = 3;
    refreshRead.choose(entry);
}

} // namespace skyhold
