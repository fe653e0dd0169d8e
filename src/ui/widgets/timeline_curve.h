// SPDX-License-Identifier: GPL-3.0-or-later
// A curve of many points, painted in a time that depends on the pixels that it covers. One stroke
// through thousands of points that go up and down takes seconds.
#pragma once

#include <QPainter>

#include <vector>

namespace skyhold {

// From the highest value of a stretch of time to its lowest; in pixels, y downwards.
struct CurvePoint {
    double x = 0;
    double top = 0;
    double bottom = 0;
};

// Through all points; by ascending x.
void paintCurve(QPainter& painter, const std::vector<CurvePoint>& points, const QColor& ink,
                double width);
// Each by itself.
void paintDots(QPainter& painter, const std::vector<CurvePoint>& points, const QColor& ink,
               double width);

} // namespace skyhold
