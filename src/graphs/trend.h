// SPDX-License-Identifier: GPL-3.0-or-later
// The course of one quantity over the last hour of the history, in small.
#pragma once

#include "graphs/graph_series.h"
#include "records/graph_history.h"

#include <vector>

namespace skyhold {

struct Trend {
    // Unbroken stretches from the oldest to the newest. A point whose value could not be read
    // is left out, and time without readings separates: nothing is drawn across either.
    std::vector<std::vector<TimedValue>> runs;
    double end = 0; // of the hour, local days since 30 December 1899
    double lowest = 0;
    double highest = 0;
};

inline constexpr double kTrendDays = 1.0 / 24;

// The hour before `now`. `value` takes the quantity from a point. Points that follow each other
// within two and a half times `stepSeconds`, the usual time between them, belong together.
Trend lastHour(const GraphHistory& history, double (*value)(const GraphPoint&), double now,
               double stepSeconds);

} // namespace skyhold
