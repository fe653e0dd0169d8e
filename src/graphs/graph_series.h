// The course of one quantity over time, taken from the history for drawing.
#pragma once

#include "records/graph_history.h"

#include <vector>

namespace skyhold {

struct TimedValue {
    double time = 0; // local days since 30 December 1899
    double value = 0;
    bool operator==(const TimedValue&) const = default;
};

struct GraphSeries {
    std::vector<TimedValue> points; // from the oldest to the newest
    double spanSeconds = 0;         // the time that a full history covers
    bool operator==(const GraphSeries&) const = default;
};

// One field of the history, for example &GraphPoint::wind.
GraphSeries graphSeries(const GraphHistory& history, double GraphPoint::*field, double spanSeconds);

} // namespace skyhold
