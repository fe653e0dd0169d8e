// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window/banner_look.h"

#include "ui/look/look.h"

#include <QPainter>
#include <QPainterPath>

namespace skyhold {

namespace {

BannerLook nightLook(BannerKind kind) {
    const QColor bright(0xff, 0, 0);
    const QColor shape(0xb8, 0, 0);
    switch (kind) {
    case BannerKind::Safe:
    case BannerKind::Waiting:
        return {.fill = Qt::black, .ink = bright, .mark = Qt::black, .edge = Qt::SolidLine};
    case BannerKind::Unsafe:
        return {.fill = bright, .ink = Qt::black, .mark = bright};
    case BannerKind::SourceFailed:
        return {.fill = Qt::black,
                .ink = bright,
                .mark = Qt::black,
                .edge = Qt::SolidLine,
                .striped = true};
    case BannerKind::Starting:
    case BannerKind::NoVerdict:
        return {.fill = Qt::black, .ink = bright, .mark = Qt::black, .edge = Qt::SolidLine};
    case BannerKind::Idle:
        break;
    }
    return {.fill = Qt::black, .ink = look::kDimText, .mark = shape, .edge = Qt::DashLine};
}

void drawStripes(QPainter& painter, const QRectF& area, const QColor& colour) {
    constexpr qreal kShare = 0.075; // of the banner's height
    const qreal height = area.height() * kShare;
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    for (const qreal top : {area.top(), area.bottom() - height}) {
        painter.save();
        painter.setClipRect(QRectF(area.left(), top, area.width(), height));
        const qreal step = 2.6 * height;
        const int stripes = static_cast<int>((area.width() + height) / step) + 1;
        for (int i = 0; i < stripes; ++i) {
            const qreal x = area.left() - height + i * step;
            painter.drawPolygon(QPolygonF{{x, top + height},
                                          {x + height, top},
                                          {x + 2.3 * height, top},
                                          {x + 1.3 * height, top + height}});
        }
        painter.restore();
    }
}

QPen stroke(const QColor& colour, qreal width) {
    return {colour, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin};
}

void drawRing(QPainter& painter, const QColor& colour) {
    painter.setBrush(Qt::NoBrush);
    painter.setPen(stroke(colour, 2.4));
    painter.drawEllipse(QRectF(2, 2, 18, 18));
}

} // namespace

BannerLook bannerLook(BannerKind kind) {
    if (lookInForce() == Look::Night)
        return nightLook(kind);
    switch (kind) {
    case BannerKind::Safe:
        return {.fill = {0x14, 0x6c, 0x36}, .ink = Qt::white, .mark = {0x14, 0x6c, 0x36}};
    case BannerKind::Waiting:
        return {.fill = {0x10, 0x20, 0x2d},
                .ink = {0x5d, 0xb4, 0xf0},
                .mark = {0x10, 0x20, 0x2d},
                .edge = Qt::SolidLine};
    case BannerKind::Unsafe:
        return {.fill = {0xc4, 0x16, 0x1c}, .ink = Qt::white, .mark = {0xc4, 0x16, 0x1c}};
    case BannerKind::SourceFailed:
        return {.fill = {0x0b, 0x0e, 0x12},
                .ink = {0xff, 0xb0, 0x00},
                .mark = {0x0b, 0x0e, 0x12},
                .edge = Qt::SolidLine,
                .striped = true};
    case BannerKind::Starting:
    case BannerKind::NoVerdict:
        return {.fill = look::kWindow, .ink = look::kDimText, .mark = {}, .edge = Qt::SolidLine};
    case BannerKind::Idle:
        break;
    }
    return {.fill = look::kWindow, .ink = look::kDimText, .mark = {}, .edge = Qt::DashLine};
}

void drawBanner(QPainter& painter, const QRectF& area, const BannerLook& look) {
    constexpr qreal kCorner = 4;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(look.fill);
    painter.setPen(look.edge == Qt::NoPen ? QPen(Qt::NoPen) : QPen(look.ink, 2, look.edge));
    const qreal inset = look.edge == Qt::NoPen ? 0 : 1;
    painter.drawRoundedRect(area.adjusted(inset, inset, -inset, -inset), kCorner, kCorner);
    if (look.striped)
        drawStripes(painter, area.adjusted(3, 3, -3, -3), look.ink);
}

void drawSign(QPainter& painter, const QRectF& area, BannerKind kind, const BannerLook& look,
              double share) {
    constexpr qreal kSide = 22; // the shapes stand on a square of this side
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(area.topLeft());
    painter.scale(area.width() / kSide, area.height() / kSide);
    painter.setPen(Qt::NoPen);
    painter.setBrush(look.ink);
    switch (kind) {
    case BannerKind::Safe:
        painter.drawEllipse(QRectF(1, 1, 20, 20));
        painter.setPen(stroke(look.mark, 2.8));
        painter.setBrush(Qt::NoBrush);
        painter.drawPolyline(QPolygonF{{6, 11.5}, {9.8, 15.3}, {16, 7.5}});
        break;
    case BannerKind::Unsafe:
        painter.drawPolygon(
            QPolygonF{{7, 1}, {15, 1}, {21, 7}, {21, 15}, {15, 21}, {7, 21}, {1, 15}, {1, 7}});
        painter.setPen(stroke(look.mark, 2.8));
        painter.drawLine(QPointF(7.5, 7.5), QPointF(14.5, 14.5));
        painter.drawLine(QPointF(14.5, 7.5), QPointF(7.5, 14.5));
        break;
    case BannerKind::SourceFailed:
        painter.drawPolygon(QPolygonF{{11, 1.5}, {21.5, 20.5}, {0.5, 20.5}});
        painter.setPen(stroke(look.mark, 2.4));
        painter.drawLine(QPointF(11, 8), QPointF(11, 13.2));
        painter.setPen(Qt::NoPen);
        painter.setBrush(look.mark);
        painter.drawEllipse(QPointF(11, 17.3), 1.5, 1.5);
        break;
    case BannerKind::Waiting: {
        constexpr int kTop = 90 * 16; // in sixteenths of a degree, counterclockwise from the right
        const QRectF ring(3, 3, 16, 16);
        painter.setBrush(Qt::NoBrush);
        QColor track = look.ink;
        track.setAlphaF(0.3F);
        painter.setPen(QPen(track, 4.4));
        painter.drawEllipse(ring);
        painter.setPen(QPen(look.ink, 4.4, Qt::SolidLine, Qt::FlatCap));
        painter.drawArc(ring, kTop, -static_cast<int>(share * 360 * 16));
        break;
    }
    case BannerKind::Starting:
    case BannerKind::NoVerdict:
        drawRing(painter, look.ink);
        for (const qreal x : {7.0, 11.0, 15.0})
            painter.drawPoint(QPointF(x, 11));
        break;
    case BannerKind::Idle:
        drawRing(painter, look.ink);
        painter.fillRect(QRectF(7.5, 7.5, 7, 7), look.ink);
        break;
    }
    painter.restore();
}

} // namespace skyhold
