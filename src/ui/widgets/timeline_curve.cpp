// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/timeline_curve.h"

#include <algorithm>
#include <cmath>

namespace skyhold {

namespace {

constexpr double kDense = 0.5;     // points a pixel from which on columns are filled
constexpr std::size_t kStroke = 2; // points that are stroked together

// Each column of pixels from its highest to its lowest point, and as far as its neighbour's.
void fillColumns(QPainter& painter, const std::vector<CurvePoint>& points, double width) {
    std::vector<QRectF> columns;
    for (auto point = points.begin(); point != points.end();) {
        const double x = std::floor(point->x);
        double top = point->top;
        double bottom = point->bottom;
        for (; point != points.end() && point->x < x + 1; ++point) {
            top = std::min(top, point->top);
            bottom = std::max(bottom, point->bottom);
        }
        double left = x;
        if (!columns.empty()) {
            const QRectF& before = columns.back();
            top = std::min(top, before.bottom() - width / 2);
            bottom = std::max(bottom, before.top() + width / 2);
            left = before.right();
        }
        columns.emplace_back(QPointF(left, top - width / 2), QPointF(x + 1, bottom + width / 2));
    }
    painter.drawRects(columns.data(), static_cast<int>(columns.size()));
}

void stroke(QPainter& painter, const std::vector<CurvePoint>& points) {
    QPolygonF line;
    for (std::size_t i = 0; i < points.size(); ++i) {
        line << QPointF(points[i].x, points[i].bottom);
        if (points[i].top != points[i].bottom)
            line << QPointF(points[i].x, points[i].top);
        if (i % kStroke == kStroke - 1 && i + 1 < points.size()) {
            painter.drawPolyline(line);
            line = QPolygonF{line.back()};
        }
    }
    painter.drawPolyline(line);
}

} // namespace

void paintCurve(QPainter& painter, const std::vector<CurvePoint>& points, const QColor& ink,
                double width) {
    if (points.empty())
        return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const double pixels = points.back().x - points.front().x;
    if (points.size() > 2 && static_cast<double>(points.size()) > kDense * pixels) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(ink);
        fillColumns(painter, points, width);
    } else {
        painter.setPen(QPen(ink, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        if (points.size() == 1)
            painter.drawPoint(QPointF(points[0].x, points[0].bottom));
        stroke(painter, points);
    }
    painter.restore();
}

void paintDots(QPainter& painter, const std::vector<CurvePoint>& points, const QColor& ink,
               double width) {
    std::vector<QRectF> dots;
    dots.reserve(points.size());
    for (const CurvePoint& point : points) {
        dots.emplace_back(point.x - width / 2, point.top - width / 2, width, width);
        if (point.bottom - point.top >= 1)
            dots.emplace_back(point.x - width / 2, point.bottom - width / 2, width, width);
    }
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ink);
    painter.drawRects(dots.data(), static_cast<int>(dots.size()));
    painter.restore();
}

} // namespace skyhold
