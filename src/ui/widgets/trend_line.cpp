// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/trend_line.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace skyhold {

namespace {

struct Range {
    double from;
    double to;
};

Range shownRange(const Trend& trend, const TrendScale& scale) {
    if (scale.circular)
        return {scale.lowest, scale.highest};
    const double missing = std::max(0.0, scale.leastSpan - (trend.highest - trend.lowest)) / 2;
    Range range{trend.lowest - missing, trend.highest + missing};
    if (range.from < scale.lowest)
        range = {scale.lowest, std::max(range.to + scale.lowest - range.from, range.to)};
    if (range.to > scale.highest)
        range = {std::max(scale.lowest, range.from - (range.to - scale.highest)), scale.highest};
    return range;
}

} // namespace

void drawTrend(QPainter& painter, const QRectF& strip, const Trend& trend, const TrendScale& scale,
               const QColor& colour) {
    const Range range = shownRange(trend, scale);
    const auto place = [&](const TimedValue& timed) {
        const double across = 1 - (trend.end - timed.time) / kTrendDays;
        const double up = (timed.value - range.from) / (range.to - range.from);
        return QPointF(strip.left() + across * strip.width(),
                       strip.bottom() - std::clamp(up, 0.0, 1.0) * strip.height());
    };
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(colour, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    QPainterPath path;
    for (const auto& run : trend.runs) {
        path.moveTo(place(run.front()));
        double last = run.front().value;
        for (const TimedValue& timed : run) {
            const QPointF point = place(timed);
            if (scale.circular && std::abs(timed.value - last) > 180)
                path.moveTo(point);
            // A point by itself is a dot: a line of no length has round ends.
            path.lineTo(point == path.currentPosition() ? point + QPointF(0.01, 0) : point);
            last = timed.value;
        }
    }
    painter.drawPath(path);
    painter.restore();
}

} // namespace skyhold
