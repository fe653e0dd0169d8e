// SPDX-License-Identifier: GPL-3.0-or-later
#include "graphs/trend.h"

#include <algorithm>
#include <cmath>

namespace skyhold {

Trend lastHour(const GraphHistory& history, double (*value)(const GraphPoint&), double now,
               double stepSeconds) {
    Trend trend;
    trend.end = now;
    const double longest = 2.5 * stepSeconds / 86400;
    bool joined = false; // to the point before
    std::int32_t elem = history.FirstElem;
    for (std::int32_t left = history.count(); left > 0; --left, elem = history.next(elem)) {
        const GraphPoint& point = history.point(elem);
        if (!point.valid || std::isnan(value(point))) {
            joined = false;
            continue;
        }
        // The clock may have been set back since a point was stored.
        if (point.date < trend.end - kTrendDays || point.date > trend.end)
            continue;
        const TimedValue timed{point.date, value(point)};
        if (trend.runs.empty()) {
            trend.lowest = trend.highest = timed.value;
        } else {
            const double step = timed.time - trend.runs.back().back().time;
            joined = joined && step >= 0 && step <= longest;
            trend.lowest = std::min(trend.lowest, timed.value);
            trend.highest = std::max(trend.highest, timed.value);
        }
        if (!joined)
            trend.runs.emplace_back();
        trend.runs.back().push_back(timed);
        joined = true;
    }
    return trend;
}

} // namespace skyhold
