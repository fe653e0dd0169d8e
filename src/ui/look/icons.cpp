// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/look/icons.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace skyhold {

namespace {

// The largest centred square; the shapes below fill one from 0 to 1.
QTransform unitSquare(const QRectF& place) {
    const qreal side = std::min(place.width(), place.height());
    QTransform transform;
    transform.translate(place.center().x() - side / 2, place.center().y() - side / 2);
    transform.scale(side, side);
    return transform;
}

QPainterPath bell() {
    QPainterPath path(QPointF(0.14, 0.74));
    path.cubicTo(0.30, 0.60, 0.20, 0.12, 0.50, 0.12);
    path.cubicTo(0.80, 0.12, 0.70, 0.60, 0.86, 0.74);
    path.closeSubpath();
    return path;
}

QPainterPath clapper() {
    QPainterPath path;
    path.addEllipse(QPointF(0.5, 0.86), 0.10, 0.08);
    return path;
}

QPainterPath speakerBody() {
    QPainterPath path(QPointF(0.06, 0.36));
    for (const QPointF point : {QPointF(0.24, 0.36), QPointF(0.48, 0.14), QPointF(0.48, 0.86),
                                QPointF(0.24, 0.64), QPointF(0.06, 0.64)})
        path.lineTo(point);
    path.closeSubpath();
    return path;
}

QPainterPath soundWaves() {
    QPainterPath path;
    for (const qreal radius : {0.20, 0.40}) {
        const QRectF circle(0.50 - radius, 0.50 - radius, 2 * radius, 2 * radius);
        path.arcMoveTo(circle, -45);
        path.arcTo(circle, -45, 90);
    }
    return path;
}

constexpr qreal kLine = 1.4;

} // namespace

void drawBell(QPainter& painter, const QRectF& place, const QColor& colour, bool filled) {
    const QTransform scaled = unitSquare(place);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(colour, kLine, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(filled ? QBrush(colour) : Qt::NoBrush);
    painter.drawPath(scaled.map(bell()));
    painter.fillPath(scaled.map(clapper()), colour);
    painter.restore();
}

void drawSpeaker(QPainter& painter, const QRectF& place, const QColor& colour, bool silent) {
    const QTransform scaled = unitSquare(place);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(scaled.map(speakerBody()), colour);
    painter.setPen(QPen(colour, kLine, Qt::SolidLine, Qt::RoundCap));
    if (silent) {
        painter.drawLine(scaled.map(QLineF(0.6, 0.32, 0.94, 0.68)));
        painter.drawLine(scaled.map(QLineF(0.94, 0.32, 0.6, 0.68)));
    } else {
        painter.drawPath(scaled.map(soundWaves()));
    }
    painter.restore();
}

} // namespace skyhold
