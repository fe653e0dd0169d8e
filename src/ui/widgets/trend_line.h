// SPDX-License-Identifier: GPL-3.0-or-later
// Draws a trend on a strip.
#pragma once

#include "graphs/trend.h"

class QColor;
class QPainter;
class QRectF;

namespace skyhold {

// What a strip shows at least, so that a calm hour looks calm.
struct TrendScale {
    double leastSpan = 1;                // in units of the quantity
    double lowest = -1e9, highest = 1e9; // never shown beyond
    bool circular = false;               // 360 is 0: no line leads across half of the scale
};

void drawTrend(QPainter& painter, const QRectF& strip, const Trend& trend, const TrendScale& scale,
               const QColor& colour);

} // namespace skyhold
