// SPDX-License-Identifier: GPL-3.0-or-later
// The history behind the six graphs: a ring of points, all in the display units of now.
#pragma once

#include <cstdint>
#include <vector>

namespace skyhold {

// A missing value is NaN.
struct GraphPoint {
    double date = 0; // the sensor program's last reading, local days since 30 December 1899
    double wind = 0;
    double gust = 0;
    double direction = 0; // degrees
    double spread = 0;    // temperature minus dew point
    double humidity = 0;  // percent
    double temperature = 0;
    bool valid = true; // read from the station then, not what was left of an earlier reading
};

struct GraphHistory {
    // Indexed by point number; point 0 is never used. Empty before the first sample.
    std::vector<GraphPoint> Points;
    std::int32_t FirstElem = 0; // the oldest point, 0 while there is none
    std::int32_t LastElem = 0;  // the newest point, 0 while there is none
    std::int32_t SampleEvery = 1;
    std::int32_t SampleCounter = 0; // readings since the last stored point

    std::int32_t capacity() const {
        return Points.empty() ? 0 : static_cast<std::int32_t>(Points.size()) - 1;
    }
    // How many points are stored.
    std::int32_t count() const {
        if (LastElem == 0)
            return 0;
        return LastElem - FirstElem + 1 + (LastElem < FirstElem ? capacity() : 0);
    }
    // The point number after `elem` on the ring; from FirstElem, count() steps visit every point.
    std::int32_t next(std::int32_t elem) const { return elem >= capacity() ? 1 : elem + 1; }

    GraphPoint& point(std::int32_t elem) { return Points[static_cast<std::size_t>(elem)]; }
    const GraphPoint& point(std::int32_t elem) const {
        return Points[static_cast<std::size_t>(elem)];
    }
};

} // namespace skyhold
