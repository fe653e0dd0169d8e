// SPDX-License-Identifier: GPL-3.0-or-later
// For how long the history is kept.
#pragma once

#include "records/controls.h"

namespace skyhold {

struct HistoryControls {
    NumberBox CycleDays;  // single cycles; from then on minutes
    NumberBox EventYears; // events, minutes and longer
    NumberBox Megabytes;  // of the file at most
};

} // namespace skyhold
