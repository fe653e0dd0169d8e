// SPDX-License-Identifier: GPL-3.0-or-later
#include "graphs/graph_series.h"

namespace skyhold {

GraphSeries graphSeries(const GraphHistory& history, double GraphPoint::*field,
                        double spanSeconds) {
    GraphSeries series;
    series.spanSeconds = spanSeconds;
    series.points.reserve(static_cast<std::size_t>(history.count()));
    std::int32_t elem = history.FirstElem;
    for (std::int32_t left = history.count(); left > 0; --left, elem = history.next(elem)) {
        const GraphPoint& point = history.point(elem);
        series.points.push_back({point.date, point.*field});
    }
    return series;
}

} // namespace skyhold
