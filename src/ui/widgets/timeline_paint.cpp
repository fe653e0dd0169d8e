// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/timeline_paint.h"

#include "ui/look/look.h"
#include "ui/widgets/timeline_band.h"
#include "ui/widgets/timeline_curve.h"

#include <algorithm>
#include <cmath>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

class RowPainter {
  public:
    RowPainter(QPainter& painter, const TimelineGrid& grid, const TimelineView& view,
               const TimelineRow& row, const QRectF& whole)
        : painter_(painter)
        , grid_(grid)
        , view_(view)
        , row_(row)
        , whole_(whole)
        , plot_(grid.plot.left(), whole.top(), grid.plot.width(), whole.height())
        , ink_(timelineInk()) {}

    void paint() {
        painter_.save();
        painter_.setClipRect(plot_);
        paintZones();
        painter_.restore();
        paintGrid();
        painter_.save();
        painter_.setClipRect(plot_);
        paintLines();
        paintCurves();
        painter_.restore();
        painter_.setPen(QPen(ink_.edge, 1));
        painter_.drawLine(whole_.topLeft(), whole_.topRight());
    }

    double yOf(double value) const {
        constexpr double kInset = 2;
        const double share = row_.shareOf(value);
        const double y = plot_.bottom() - kInset - share * (plot_.height() - 2 * kInset);
        return std::clamp(y, plot_.top() - 4, plot_.bottom() + 4);
    }

  private:
    double xOf(std::int64_t atMs) const { return grid_.xOf(atMs, view_.shown); }

    QRectF rectOf(const Zone& zone) const {
        const double top = zone.high == kNoBound ? plot_.top() : yOf(zone.high);
        const double bottom = zone.low == -kNoBound ? plot_.bottom() : yOf(zone.low);
        return QRectF(QPointF(xOf(zone.time.fromMs), top), QPointF(xOf(zone.time.toMs), bottom))
            .intersected(plot_);
    }

    void paintZones() {
        for (const Zone& zone : row_.zones)
            painter_.fillRect(rectOf(zone), ink_.zone);
    }

    void paintGrid() {
        const double spacing = 44 * std::max(grid_.unit, 1.0);
        for (const AxisMark& mark : axisMarks(view_.shown, plot_.width(), spacing)) {
            const double x = std::round(xOf(mark.atMs)) + 0.5;
            painter_.setPen(QPen(mark.midnight ? ink_.midnight : ink_.grid, 1));
            painter_.drawLine(QPointF(x, plot_.top()), QPointF(x, plot_.bottom()));
        }
    }

    void paintLines() {
        for (const LimitLine& line : row_.lines) {
            const double share = row_.shareOf(line.value);
            if (!line.unsafe && (share <= 0 || share >= 1))
                continue;
            QPen pen(line.unsafe ? ink_.limit : ink_.edge, line.unsafe ? 1.2 : 1);
            if (!line.unsafe)
                pen.setDashPattern({2, 4});
            else if (line.observed)
                pen.setDashPattern({6, 3});
            painter_.setPen(pen);
            const double y = yOf(line.value);
            painter_.drawLine(QPointF(xOf(line.time.fromMs), y), QPointF(xOf(line.time.toMs), y));
        }
    }

    using SampleAt = std::vector<Sample>::const_iterator;

    std::vector<CurvePoint> curveOf(SampleAt from, SampleAt to) const {
        std::vector<CurvePoint> points;
        points.reserve(static_cast<std::size_t>(to - from));
        for (auto sample = from; sample != to; ++sample)
            points.push_back({xOf(sample->time.fromMs), yOf(sample->high), yOf(sample->low)});
        return points;
    }

    // Those in sight, and one more at either side.
    void paintRun(const std::vector<Sample>& run) {
        const auto startsBefore = [](const Sample& sample, std::int64_t atMs) {
            return sample.time.fromMs < atMs;
        };
        auto from = std::lower_bound(run.begin(), run.end(), view_.shown.fromMs, startsBefore);
        auto to = std::lower_bound(from, run.end(), view_.shown.toMs, startsBefore);
        if (from != run.begin())
            --from;
        if (to != run.end())
            ++to;
        const double thick = std::max(grid_.unit, 1.0);
        if (row_.index == MeasuredDirection) { // it jumps from 360 to 0
            paintDots(painter_, curveOf(from, to), ink_.curve, 1.8 * thick);
            return;
        }
        paintCurve(painter_, curveOf(from, to), ink_.curve, 1.2 * thick);
        paintBeyond(from, to, thick);
    }

    // What is judged unsafe, up to the limit where one is known.
    void paintBeyond(SampleAt first, SampleAt last, double thick) {
        for (auto sample = first; sample != last;) {
            if (!sample->beyond) {
                ++sample;
                continue;
            }
            const auto end = std::find_if(sample, last, [](const Sample& s) { return !s.beyond; });
            const auto from = sample == first ? sample : std::prev(sample);
            const auto to = end == last ? end : std::next(end);
            paintWithin({from->time.fromMs, std::prev(to)->time.toMs}, curveOf(from, to),
                        2.8 * thick);
            sample = end;
        }
    }

    void paintWithin(TimeRange time, const std::vector<CurvePoint>& points, double width) {
        if (row_.zones.empty()) {
            paintCurve(painter_, points, ink_.beyond, width);
            return;
        }
        for (const Zone& zone : row_.zones) {
            if (zone.time.toMs <= time.fromMs || zone.time.fromMs >= time.toMs)
                continue;
            painter_.save();
            painter_.setClipRect(rectOf(zone).adjusted(0, -2, 0, 2), Qt::IntersectClip);
            paintCurve(painter_, points, ink_.beyond, width);
            painter_.restore();
        }
    }

    void paintCurves() {
        for (const std::vector<Sample>& run : row_.runs) {
            if (run.back().time.toMs >= view_.shown.fromMs &&
                run.front().time.fromMs <= view_.shown.toMs)
                paintRun(run);
        }
    }

    QPainter& painter_;
    const TimelineGrid& grid_;
    const TimelineView& view_;
    const TimelineRow& row_;
    QRectF whole_;
    QRectF plot_;
    TimelineInk ink_;
};

void paintLabels(QPainter& painter, const TimelineGrid& grid, const TimelineRow& row,
                 const QRectF& whole, const RowPainter& rowPainter, bool culprit) {
    const TimelineInk ink = timelineInk();
    const double nameHeight = 1.2 * grid.text;
    const double unitHeight = 1.2 * grid.small;
    const double spare = whole.height() - nameHeight - unitHeight;
    const bool withUnit = spare >= 0;
    QRectF name(whole.left() + 2, whole.top() + std::clamp(spare / 2, 0.0, 3.0),
                grid.labelEnd - whole.left(), nameHeight);
    if (!withUnit)
        name.moveTop(whole.center().y() - name.height() / 2);
    if (culprit) {
        const double size = grid.text;
        paintState(painter, {name.left() - 4, name.center().y() - size / 2, size, size},
                   BandState::Unsafe);
        name.translate(size, 0);
    }
    painter.setFont(pixelFont(grid.text, true));
    painter.setPen(ink.text);
    painter.drawText(name, Qt::AlignLeft | Qt::AlignVCenter, row.title);
    if (withUnit) {
        painter.setFont(pixelFont(grid.small));
        painter.setPen(ink.dim);
        painter.drawText(QRectF(whole.left() + 2, name.bottom(), 60 * grid.unit, unitHeight),
                         Qt::AlignLeft | Qt::AlignVCenter, row.unit);
    }
    // The limits in force at the end, those that do not stand on another.
    painter.setFont(pixelFont(grid.small, true));
    painter.setPen(ink.limitText);
    double last = -1e9;
    for (auto line = row.lines.rbegin(); line != row.lines.rend(); ++line) {
        if (!line->unsafe || line->time.toMs != row.lines.back().time.toMs)
            continue;
        const double height = 1.2 * grid.small;
        const double y = std::clamp(rowPainter.yOf(line->value), whole.top() + height / 2,
                                    whole.bottom() - height / 2);
        if (std::abs(y - last) < height)
            continue;
        last = y;
        const QString number =
            line->observed ? row.text(line->value) : QString::number(line->value, 'g', 4);
        painter.drawText(
            QRectF(whole.left(), y - height / 2, grid.labelEnd - whole.left() - 5, height),
            Qt::AlignRight | Qt::AlignVCenter, line->observed ? u"≈ "_s + number : number);
    }
}

// What the sources last said, in the column at the right.
void paintValues(QPainter& painter, const TimelineGrid& grid, const Night& night,
                 const MomentThen& moment, const QColor& ink, const QColor& beyond) {
    const TimelineInk inks = timelineInk();
    painter.setFont(pixelFont(grid.text + 1, true));
    for (std::size_t i = 0; i < grid.rows.size() && i < night.rows.size(); ++i) {
        const QRectF& whole = grid.rows[i];
        const auto& value = moment.values[i];
        painter.setPen(!value ? inks.old : value->beyond ? beyond : ink);
        painter.drawText(QRectF(grid.plot.right(), whole.top(), grid.valueEnd - grid.plot.right(),
                                whole.height()),
                         Qt::AlignRight | Qt::AlignVCenter,
                         value ? night.rows[i].text(value->value) : u"–"_s);
    }
}

void paintAxis(QPainter& painter, const TimelineGrid& grid, const TimelineView& view) {
    const TimelineInk ink = timelineInk();
    const double spacing = 44 * std::max(grid.unit, 1.0);
    for (const AxisMark& mark : axisMarks(view.shown, grid.axis.width(), spacing)) {
        const double x = grid.xOf(mark.atMs, view.shown);
        const QRectF where(x - spacing / 2, grid.axis.top(), spacing, grid.axis.height());
        if (where.left() < grid.axis.left() - spacing / 3 || where.right() > grid.valueEnd)
            continue;
        painter.setFont(pixelFont(grid.small, mark.midnight));
        painter.setPen(mark.midnight ? ink.text : ink.dim);
        painter.drawText(where, Qt::AlignCenter, mark.text);
    }
}

} // namespace

void paintTimeline(QPainter& painter, const TimelineGrid& grid, const Night& night,
                   const TimelineView& view) {
    const TimelineInk ink = timelineInk();
    paintHead(painter, grid, view);
    paintBand(painter, grid, night, view);
    const std::int64_t endMs = night.record.range.toMs - 1;
    const MomentThen now = momentAt(endMs, night.band, night.rows);
    for (std::size_t i = 0; i < grid.rows.size() && i < night.rows.size(); ++i) {
        RowPainter row(painter, grid, view, night.rows[i], grid.rows[i]);
        row.paint();
        const bool culprit = view.live && view.atNow && now.values[i] && now.values[i]->beyond;
        paintLabels(painter, grid, night.rows[i], grid.rows[i], row, culprit);
    }
    paintHatches(painter, grid, night, view);
    paintAxis(painter, grid, view);
    if (view.live)
        paintValues(painter, grid, night, now, ink.live, ink.live);
    else
        paintValues(painter, grid, night, lastValues(night), ink.old, ink.old);
}

void paintMoment(QPainter& painter, const TimelineGrid& grid, const Night& night,
                 const TimelineView& view, std::int64_t atMs) {
    const TimelineInk ink = timelineInk();
    const double x = grid.xOf(atMs, view.shown);
    const MomentThen moment = momentAt(atMs, night.band, night.rows);
    painter.setPen(QPen(ink.cursor, 1.4));
    painter.drawLine(QPointF(x, grid.band.top()), QPointF(x, grid.plot.bottom()));
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ink.cursor);
    for (std::size_t i = 0; i < grid.rows.size() && i < night.rows.size(); ++i) {
        if (!moment.values[i])
            continue;
        const RowPainter row(painter, grid, view, night.rows[i], grid.rows[i]);
        const double size = 3 * std::max(grid.unit, 1.0);
        painter.drawEllipse(QPointF(x, row.yOf(moment.values[i]->value)), size, size);
    }
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setBrush(Qt::NoBrush);
    // The values of that moment in the place of the last ones.
    painter.fillRect(QRectF(grid.plot.right() + 1, grid.plot.top() + 1,
                            grid.valueEnd - grid.plot.right() - 1, grid.plot.height()),
                     ink.ground);
    paintValues(painter, grid, night, moment, ink.cursor, ink.beyond);
    paintReadOut(painter, grid, moment, x);
}

} // namespace skyhold
