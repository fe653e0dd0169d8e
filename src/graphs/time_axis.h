// SPDX-License-Identifier: GPL-3.0-or-later
// The horizontal scale of a graph: where a time lies, and which times are marked.
#pragma once

#include "graphs/graph_series.h"

#include <QString>

#include <vector>

namespace skyhold {

struct TimeAxis {
    double start = 0; // local days since 30 December 1899
    double end = 0;
    int right = 0; // where `end` lies; `start` lies at 0

    // Horizontal position of a time, rounded down.
    int position(double time) const;
};

// From the oldest point to the newest, or as far as a full history would reach: a graph fills from
// the left. Without points start and end are the same.
TimeAxis timeAxis(const GraphSeries& series, int right);

struct TimeTick {
    int x = 0;
    QString label; // "hh:mm:ss" when ticks are less than 10 minutes apart, otherwise "hh:mm"
};

// The twelfths of the axis, without its two ends.
std::vector<TimeTick> timeTicks(const TimeAxis& axis);

} // namespace skyhold
