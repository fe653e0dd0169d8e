// SPDX-License-Identifier: GPL-3.0-or-later
// The course of one quantity over time, taken from the history for drawing.
#pragma once

#include "records/graph_history.h"

#include <cmath>
#include <vector>

namespace skyhold {

struct TimedValue {
    double time = 0;  // local days since 30 December 1899
    double value = 0; // NaN: missing
    bool operator==(const TimedValue& other) const {
        return time == other.time &&
               (value == other.value || (std::isnan(value) && std::isnan(other.value)));
    }
};

struct GraphSeries {
    std::vector<TimedValue> points; // from the oldest to the newest
    double spanSeconds = 0;         // the time that a full history covers
    bool operator==(const GraphSeries&) const = default;
};

// One field of the history, for example &GraphPoint::wind.
GraphSeries graphSeries(const GraphHistory& history, double GraphPoint::*field, double spanSeconds);

} // namespace skyhold
