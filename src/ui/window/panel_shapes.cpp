// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window/panel_shapes.h"

#include "model/compass.h"
#include "ui/look/look.h"
#include "ui/window/panel_inks.h"

#include <QPainter>
#include <QPainterPath>

#include <cmath>

namespace skyhold {

namespace {

constexpr double kSide = 16; // the health shapes are drawn on a square of this side

QPainterPath bell() {
    QPainterPath path(QPointF(1.5, 12));
    path.cubicTo(3.5, 10.5, 3.5, 8, 3.5, 6.5);
    path.cubicTo(3.5, 0.2, 12.5, 0.2, 12.5, 6.5);
    path.cubicTo(12.5, 8, 12.5, 10.5, 14.5, 12);
    path.closeSubpath();
    path.moveTo(6, 14);
    path.lineTo(10, 14);
    return path;
}

QPen stroke(const QColor& colour, qreal width) {
    return {colour, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin};
}

} // namespace

void drawHealthShape(QPainter& painter, const QRectF& square, HealthShape shape, double share) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(square.topLeft());
    painter.scale(square.width() / kSide, square.height() / kSide);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::NoBrush);
    switch (shape) {
    case HealthShape::Off:
        painter.setPen(stroke(look::kDimText, 1.6));
        painter.drawEllipse(QRectF(2, 2, 12, 12));
        break;
    case HealthShape::Working:
        painter.setBrush(panel::working());
        painter.drawEllipse(QRectF(1.5, 1.5, 13, 13));
        break;
    case HealthShape::Filling: {
        constexpr int kTop = 90 * 16; // in sixteenths of a degree, counterclockwise from the right
        painter.setPen(QPen(look::kEdge, 3));
        painter.drawEllipse(QRectF(2.5, 2.5, 11, 11));
        painter.setPen(QPen(look::kText, 3, Qt::SolidLine, Qt::FlatCap));
        painter.drawArc(QRectF(2.5, 2.5, 11, 11), kTop,
                        -static_cast<int>(std::lround(share * 360 * 16)));
        break;
    }
    case HealthShape::Failed:
        painter.setBrush(panel::warning(look::kField));
        painter.drawPolygon(QPolygonF{{8, 0.5}, {15.8, 15}, {0.2, 15}});
        painter.setPen(stroke(look::kField, 1.8));
        painter.drawLine(QPointF(8, 5.5), QPointF(8, 9.5));
        painter.drawPoint(QPointF(8, 12.6));
        break;
    case HealthShape::Armed:
        painter.setPen(stroke(look::kText, 1.6));
        painter.drawPath(bell());
        break;
    case HealthShape::Sounding:
        painter.setPen(stroke(panel::alarmEdge(), 1.6));
        painter.setBrush(panel::alarmEdge());
        painter.drawPath(bell());
        break;
    }
    painter.restore();
}

void drawCompass(QPainter& painter, const QRectF& square, double degrees, const QColor& needle) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(square.center());
    const double radius = square.width() / 2 - 1;
    painter.setPen(QPen(look::kDimText, std::max(1.0, radius / 24)));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(QPointF(0, 0), radius, radius);
    for (int i = 0; i < 4; ++i) {
        painter.drawLine(QPointF(0, -radius), QPointF(0, -0.8 * radius));
        painter.rotate(90);
    }
    painter.rotate(degrees);
    painter.setPen(Qt::NoPen);
    painter.setBrush(needle);
    painter.drawPolygon(QPolygonF{{0, -0.8 * radius},
                                  {0.36 * radius, 0.6 * radius},
                                  {0, 0.36 * radius},
                                  {-0.36 * radius, 0.6 * radius}});
    painter.restore();
}

void drawRoof(QPainter& painter, const QRectF& area, bool open, const QColor& ink) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(area.topLeft());
    painter.scale(area.width() / 32, area.height() / 20);
    painter.setPen(stroke(ink, 2.2));
    painter.setBrush(Qt::NoBrush);
    if (open) {
        painter.drawPolyline(QPolygonF{{1.5, 18}, {1.5, 8}, {9, 2}});
        painter.drawPolyline(QPolygonF{{30.5, 18}, {30.5, 8}, {23, 2}});
    } else {
        painter.drawPolygon(QPolygonF{{1.5, 18}, {1.5, 9}, {16, 2}, {30.5, 9}, {30.5, 18}});
    }
    painter.restore();
}

void drawGauge(QPainter& painter, const Gauge& gauge, const QRectF& bar) {
    const QColor limit = panel::limitLine();
    const qreal unit = bar.height() / 7;
    const auto x = [&bar](double at) {
        return bar.left() + at * bar.width();
    };
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.fillRect(bar, look::kField);
    for (const Gauge::Span& span : gauge.unsafe)
        painter.fillRect(
            QRectF(QPointF(x(span.from), bar.top()), QPointF(x(span.to), bar.bottom())),
            QBrush(limit, Qt::BDiagPattern));
    painter.setPen(look::kDimText);
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(bar);
    for (const Gauge::Limit& at : gauge.limits) {
        painter.setPen(QPen(at.unsafe ? limit : look::kDimText, (at.unsafe ? 2 : 1) * unit));
        painter.drawLine(QPointF(x(at.at), bar.top() - 2 * unit),
                         QPointF(x(at.at), bar.bottom() + 2 * unit));
    }
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(look::kText);
    const qreal marker = x(gauge.marker);
    painter.drawPolygon(QPolygonF{{marker - 5 * unit, bar.top() - 6 * unit},
                                  {marker + 5 * unit, bar.top() - 6 * unit},
                                  {marker + 1.5 * unit, bar.top()},
                                  {marker + 1.5 * unit, bar.bottom() + unit},
                                  {marker - 1.5 * unit, bar.bottom() + unit},
                                  {marker - 1.5 * unit, bar.top()}});
    painter.restore();
}

std::size_t compassPoint(double degrees) {
    constexpr auto kPoints = static_cast<long>(kCompassPoints.size());
    const long point = std::lround(degrees * static_cast<double>(kPoints) / 360) % kPoints;
    return static_cast<std::size_t>((point + kPoints) % kPoints);
}

} // namespace skyhold
