// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/timeline_band.h"

#include "platform/text_forms.h"

#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

// How much of the band's height it fills, from below.
double heightOf(BandState state) {
    switch (state) {
    case BandState::Safe:
        return 0.33;
    case BandState::Waiting:
        return 0.5;
    case BandState::Unsafe:
    case BandState::SourceFailed:
        return 1;
    case BandState::NotMonitored:
        break;
    }
    return 0;
}

// Slanted stripes.
void hatch(QPainter& painter, const QRectF& where, const QColor& ink, double width, double step) {
    painter.save();
    painter.setClipRect(where, Qt::IntersectClip);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(ink, width));
    const int count = static_cast<int>((where.width() + where.height()) / step) + 2;
    for (int i = 0; i < count; ++i) {
        const double x = where.left() - where.height() + i * step;
        painter.drawLine(QPointF(x, where.bottom()), QPointF(x + where.height(), where.top()));
    }
    painter.restore();
}

void paintSegment(QPainter& painter, const TimelineGrid& grid, const BandSegment& segment,
                  const TimelineView& view, const TimelineInk& ink) {
    const double left = std::max(grid.xOf(segment.time.fromMs, view.shown), grid.band.left());
    double right = std::min(grid.xOf(segment.time.toMs, view.shown), grid.band.right());
    if (right < grid.band.left() || left > grid.band.right())
        return;
    right = std::min(std::max(right, left + 2), grid.band.right()); // however short, it is seen
    const double height = grid.band.height() * heightOf(segment.state);
    const QRectF where(QPointF(left, grid.band.bottom() - height),
                       QPointF(right, grid.band.bottom()));
    switch (segment.state) {
    case BandState::NotMonitored: {
        QPen pen(ink.off, 1.5);
        pen.setDashPattern({2, 3});
        painter.setPen(pen);
        painter.drawLine(where.bottomLeft() - QPointF(0, 1), where.bottomRight() - QPointF(0, 1));
        return;
    }
    case BandState::Safe:
        painter.fillRect(where, ink.safe);
        break;
    case BandState::Waiting:
        if (ink.outlines) {
            painter.setPen(QPen(ink.waiting, 1));
            painter.drawRect(where.adjusted(0.5, 0.5, -0.5, -0.5));
        } else {
            painter.fillRect(where, ink.waiting);
        }
        break;
    case BandState::Unsafe:
        painter.fillRect(where, ink.unsafe);
        break;
    case BandState::SourceFailed:
        painter.fillRect(where, Qt::black);
        hatch(painter, where, ink.failed, 2.6 * grid.unit, 6.5 * grid.unit);
        painter.setPen(QPen(ink.failed, 1));
        painter.drawRect(where.adjusted(0.5, 0.5, -0.5, -0.5));
        break;
    }
    // Its word where there is room: above a low one, within a high one.
    const bool high = segment.state == BandState::Unsafe;
    if (segment.state != BandState::Safe && !high)
        return;
    painter.setFont(pixelFont(grid.small, true));
    const QString word = titleOf(segment);
    if (painter.fontMetrics().horizontalAdvance(word) + 10 > right - left)
        return;
    const QColor onRed = ink.outlines || ink.unsafe.lightness() > 140 ? Qt::black : Qt::white;
    painter.setPen(high ? onRed : ink.outlines ? ink.text : ink.safe);
    const QRectF above(left, grid.band.top(), right - left,
                       high ? grid.band.height() : grid.band.height() * 0.67);
    painter.drawText(above, Qt::AlignCenter, word);
}

QPolygonF octagon(const QRectF& where) {
    const double cut = where.width() * 0.293;
    const QRectF& r = where;
    return QPolygonF() << QPointF(r.left() + cut, r.top()) << QPointF(r.right() - cut, r.top())
                       << QPointF(r.right(), r.top() + cut) << QPointF(r.right(), r.bottom() - cut)
                       << QPointF(r.right() - cut, r.bottom())
                       << QPointF(r.left() + cut, r.bottom()) << QPointF(r.left(), r.bottom() - cut)
                       << QPointF(r.left(), r.top() + cut);
}

} // namespace

void paintState(QPainter& painter, const QRectF& where, BandState state) {
    const TimelineInk ink = timelineInk();
    const double size = where.width();
    const QPointF middle = where.center();
    const QRectF inner = where.adjusted(1, 1, -1, -1);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const auto stroke = [&](const QColor& colour, double width) {
        painter.setPen(QPen(colour, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.setBrush(Qt::NoBrush);
    };
    const auto fill = [&](const QColor& colour) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(colour);
    };
    switch (state) {
    case BandState::Safe:
        if (ink.outlines)
            stroke(ink.safe, 1.3);
        else
            fill(ink.safe);
        painter.drawEllipse(inner);
        stroke(ink.outlines ? ink.safe : ink.ground, size / 8);
        painter.drawPolyline(QPolygonF() << middle + QPointF(-0.22, 0.02) * size
                                         << middle + QPointF(-0.05, 0.18) * size
                                         << middle + QPointF(0.23, -0.18) * size);
        break;
    case BandState::Waiting:
        stroke(ink.edge, size / 8);
        painter.drawEllipse(inner);
        stroke(ink.waiting, size / 8);
        painter.drawArc(inner, 90 * 16, -200 * 16);
        break;
    case BandState::Unsafe: {
        fill(ink.unsafe);
        painter.drawPolygon(octagon(where));
        stroke(ink.outlines ? QColor(Qt::black) : QColor(Qt::white), size / 7);
        const double arm = 0.19 * size;
        painter.drawLine(middle - QPointF(arm, arm), middle + QPointF(arm, arm));
        painter.drawLine(middle - QPointF(arm, -arm), middle + QPointF(arm, -arm));
        break;
    }
    case BandState::SourceFailed:
        fill(ink.failed);
        painter.drawPolygon(QPolygonF() << QPointF(middle.x(), where.top()) << where.bottomRight()
                                        << where.bottomLeft());
        stroke(Qt::black, size / 8);
        painter.drawLine(middle + QPointF(0, -0.12) * size, middle + QPointF(0, 0.14) * size);
        painter.drawPoint(middle + QPointF(0, 0.33) * size);
        break;
    case BandState::NotMonitored:
        stroke(ink.off, size / 10);
        painter.drawEllipse(inner);
        break;
    }
    painter.restore();
}

void paintHead(QPainter& painter, const TimelineGrid& grid, const TimelineView& view) {
    const TimelineInk ink = timelineInk();
    painter.setFont(pixelFont(grid.small));
    painter.setPen(ink.dim);
    const QFontMetricsF metrics(painter.font());
    const QDateTime end = QDateTime::fromMSecsSinceEpoch(view.shown.toMs);
    const QString now = view.atNow && view.live ? u"now"_s : u"at "_s + end.toString(u"HH:mm"_s);
    painter.drawText(grid.head, Qt::AlignLeft | Qt::AlignVCenter, view.beginning);
    painter.drawText(grid.head, Qt::AlignRight | Qt::AlignVCenter, now);
    // The date at each midnight that has room between the two.
    double taken = grid.head.left() + metrics.horizontalAdvance(view.beginning) + 8;
    const double free = grid.head.right() - metrics.horizontalAdvance(now) - 8;
    for (QDate day = QDateTime::fromMSecsSinceEpoch(view.shown.fromMs).date().addDays(1);
         day <= end.date(); day = day.addDays(1)) {
        const QString date = QLocale::c().toString(day, u"ddd d MMM"_s);
        const double half = metrics.horizontalAdvance(date) / 2;
        const double x = grid.xOf(day.startOfDay().toMSecsSinceEpoch(), view.shown);
        if (x - half < taken || x + half > free)
            continue;
        painter.drawText(QRectF(x - half, grid.head.top(), 2 * half, grid.head.height()),
                         Qt::AlignCenter, date);
        taken = x + half + 8;
    }
}

void paintBand(QPainter& painter, const TimelineGrid& grid, const Night& night,
               const TimelineView& view) {
    painter.setFont(pixelFont(grid.text, true));
    painter.setPen(timelineInk().text);
    painter.drawText(QRectF(10 * grid.unit, grid.band.top(), grid.labelEnd, grid.band.height()),
                     Qt::AlignLeft | Qt::AlignVCenter, u"Verdict"_s);
    paintVerdicts(painter, grid, night.band, view);
}

void paintVerdicts(QPainter& painter, const TimelineGrid& grid,
                   const std::vector<BandSegment>& band, const TimelineView& view) {
    const TimelineInk ink = timelineInk();
    // What is worse stands over what is better where both share a pixel.
    for (const BandState state : {BandState::NotMonitored, BandState::Safe, BandState::Waiting,
                                  BandState::Unsafe, BandState::SourceFailed}) {
        for (const BandSegment& segment : band) {
            if (segment.state == state)
                paintSegment(painter, grid, segment, view, ink);
        }
    }
}

void paintHatches(QPainter& painter, const TimelineGrid& grid, const Night& night,
                  const TimelineView& view) {
    if (night.band.empty())
        return;
    const TimelineInk ink = timelineInk();
    // At the end alone: gaps show the others.
    const BandSegment& last = night.band.back();
    const bool failed = last.state == BandState::SourceFailed;
    if (!failed && last.state != BandState::NotMonitored)
        return;
    const double right = std::min(grid.xOf(last.time.toMs, view.shown), grid.plot.right());
    const double left = std::max(grid.xOf(last.time.fromMs, view.shown), grid.plot.left());
    if (right <= left)
        return;
    for (std::size_t i = 0; i < grid.rows.size(); ++i) {
        const auto& runs = night.rows[i].runs;
        const bool known = !runs.empty() && runs.back().back().time.toMs >= night.record.range.toMs;
        if (failed && known)
            continue; // the source that works
        const QRectF where(QPointF(left, grid.rows[i].top() + 1),
                           QPointF(std::max(right, left + 3), grid.rows[i].bottom()));
        hatch(painter, where, failed ? ink.failed : ink.edge, 2 * grid.unit, 7 * grid.unit);
    }
}

void paintReadOut(QPainter& painter, const TimelineGrid& grid, const MomentThen& moment, double x) {
    const TimelineInk ink = timelineInk();
    const double pad = 6;
    const auto box = [&](const QRectF& where) {
        painter.fillRect(where, ink.readOut);
    };
    painter.setFont(pixelFont(grid.small, true));
    // The time over the column of values.
    const QString at = u"at "_s + clockText(moment.atMs).first(5);
    const double atWidth = QFontMetricsF(painter.font()).horizontalAdvance(at) + 2 * pad;
    const QRectF column(grid.valueEnd - atWidth, grid.head.top(), atWidth, grid.head.height() - 2);
    box(column);
    painter.setPen(ink.readOutText);
    painter.drawText(column, Qt::AlignCenter, at);
    // The read-out, as near to the line as it can stand.
    const QString title = clockText(moment.atMs) + u' ' + titleOf(moment.segment);
    const QString causes = moment.segment.causes.join(u" · "_s);
    const double icon = grid.small + 1;
    const double titleWidth = QFontMetricsF(painter.font()).horizontalAdvance(title) + 2;
    const QFontMetricsF plain(pixelFont(grid.small));
    const double most = column.left() - 4 - grid.plot.left();
    const double causesMost = std::max(most - icon - titleWidth - 4 * pad, 0.0);
    const QString shown = plain.elidedText(causes, Qt::ElideRight, causesMost);
    const double width =
        icon + titleWidth + 3 * pad + (shown.isEmpty() ? 0 : plain.horizontalAdvance(shown) + pad);
    const double left = std::clamp(x - width / 2, grid.plot.left(),
                                   std::max(grid.plot.left(), column.left() - 4 - width));
    const QRectF line(left, column.top(), width, column.height());
    painter.fillRect(QRectF(grid.head.left(), column.top(), column.left() - 4 - grid.head.left(),
                            column.height()),
                     ink.ground);
    box(line);
    if (!ink.outlines)
        paintState(painter, {line.left() + pad, line.center().y() - icon / 2, icon, icon},
                   moment.segment.state);
    painter.setPen(ink.readOutText);
    painter.drawText(QRectF(line.left() + 2 * pad + icon, line.top(), titleWidth, line.height()),
                     Qt::AlignLeft | Qt::AlignVCenter, title);
    painter.setFont(pixelFont(grid.small));
    painter.drawText(QRectF(line.left() + 3 * pad + icon + titleWidth, line.top(),
                            plain.horizontalAdvance(shown) + 2, line.height()),
                     Qt::AlignLeft | Qt::AlignVCenter, shown);
    // The time in the axis.
    painter.setFont(pixelFont(grid.small, true));
    const QString time = clockText(moment.atMs);
    const double half = QFontMetricsF(painter.font()).horizontalAdvance(time) / 2 + pad;
    const double middle = std::clamp(x, grid.axis.left() + half,
                                     std::max(grid.axis.left() + half, grid.valueEnd - half));
    const QRectF tag(middle - half, grid.axis.top() + 1, 2 * half, grid.axis.height() - 2);
    box(tag);
    painter.setPen(ink.readOutText);
    painter.drawText(tag, Qt::AlignCenter, time);
}

MomentThen lastValues(const Night& night) {
    MomentThen last;
    for (std::size_t i = 0; i < night.rows.size() && i < last.values.size(); ++i) {
        if (!night.rows[i].runs.empty())
            last.values[i] = {night.rows[i].runs.back().back().mean,
                              night.rows[i].runs.back().back().beyond};
    }
    return last;
}

} // namespace skyhold
