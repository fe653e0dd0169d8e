// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/look/verdict_icon.h"

#include "ui/look/look.h"

#include <QPainter>
#include <QPainterPath>

namespace skyhold {

namespace {

// The shapes stand on a square of this side.
constexpr qreal kSide = 22;

const QColor kSafeFill(0x1e, 0x8e, 0x3e);
const QColor kUnsafeFill(0xd0, 0x21, 0x2a);
const QColor kFaultFill(0xff, 0xb0, 0x20);
const QColor kFaultMark(0x26, 0x1a, 0x00);
const QColor kNoneRing(0x8c, 0x98, 0xa4);

// The sign on a filled shape.
QColor markColour() {
    return lookInForce() == Look::Night ? Qt::black : Qt::white;
}

QPen stroke(const QColor& colour, qreal width) {
    return {colour, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin};
}

QColor faultMark() {
    return lookInForce() == Look::Night ? QColor(Qt::black) : kFaultMark;
}

void drawNone(QPainter& painter) {
    painter.setPen(stroke(look::light(kNoneRing), 3));
    painter.drawEllipse(QRectF(3, 3, 16, 16));
}

void drawSafe(QPainter& painter) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(look::light(kSafeFill));
    painter.drawEllipse(QRectF(1, 1, 20, 20));
    painter.setPen(stroke(markColour(), 2.8));
    painter.drawPolyline(QPolygonF{{6, 11.5}, {9.8, 15.3}, {16, 7.5}});
}

void drawUnsafe(QPainter& painter) {
    constexpr qreal kNear = 7;
    constexpr qreal kFar = kSide - kNear;
    constexpr qreal kEnd = kSide - 0.8;
    painter.setPen(Qt::NoPen);
    painter.setBrush(look::light(kUnsafeFill));
    painter.drawPolygon(QPolygonF{{kNear, 0.8},
                                  {kFar, 0.8},
                                  {kEnd, kNear},
                                  {kEnd, kFar},
                                  {kFar, kEnd},
                                  {kNear, kEnd},
                                  {0.8, kFar},
                                  {0.8, kNear}});
    painter.setPen(stroke(markColour(), 2.8));
    painter.drawLine(QPointF(7, 7), QPointF(15, 15));
    painter.drawLine(QPointF(15, 7), QPointF(7, 15));
}

void drawFault(QPainter& painter) {
    painter.setPen(stroke(look::light(kFaultFill), 2));
    painter.setBrush(look::light(kFaultFill));
    painter.drawPolygon(QPolygonF{{11, 2}, {20.5, 19.5}, {1.5, 19.5}});
    painter.setPen(stroke(faultMark(), 2.4));
    painter.drawLine(QPointF(11, 8), QPointF(11, 12.8));
    painter.setPen(Qt::NoPen);
    painter.setBrush(faultMark());
    painter.drawEllipse(QPointF(11, 16.8), 1.5, 1.5);
}

} // namespace

VerdictIcon verdictIcon(SessionState session, Verdict verdict, const CurrentReadings& readings) {
    if (session == SessionState::Idle)
        return VerdictIcon::None;
    if (readings.SensorError || readings.StationDataOld || readings.StationFileMissing)
        return VerdictIcon::Fault;
    if (verdict == Verdict::None)
        return VerdictIcon::None;
    return verdict == Verdict::Safe ? VerdictIcon::Safe : VerdictIcon::Unsafe;
}

QIcon drawVerdictIcon(VerdictIcon which) {
    QIcon icon;
    for (const int side : {16, 22, 24, 32, 48, 64}) {
        QPixmap picture(side, side);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(side / kSide, side / kSide);
        switch (which) {
        case VerdictIcon::None:
            drawNone(painter);
            break;
        case VerdictIcon::Safe:
            drawSafe(painter);
            break;
        case VerdictIcon::Unsafe:
            drawUnsafe(painter);
            break;
        case VerdictIcon::Fault:
            drawFault(painter);
            break;
        }
        painter.end();
        icon.addPixmap(picture);
    }
    return icon;
}

} // namespace skyhold
