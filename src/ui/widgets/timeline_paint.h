// SPDX-License-Identifier: GPL-3.0-or-later
// How the timeline of a night is painted: band, rows, axis, and what stands over them while a
// moment is pointed at. Painted with a QPainter of its own: rows share one axis, have zones that
// change with the limits and curves that change their ink within a zone.
#pragma once

#include "ui/widgets/timeline_data.h"

#include <QPainter>
#include <QRectF>

namespace skyhold {

// A record with all that is computed from it.
struct Night {
    NightRecord record;
    std::vector<BandSegment> band;
    std::vector<TimelineRow> rows;
};
Night nightOf(NightRecord record);

struct TimelineInk {
    QColor ground, text, dim, edge, grid, midnight;
    QColor zone, limit, limitText, curve, beyond;
    QColor safe, waiting, unsafe, failed, off;
    QColor live, old;
    QColor readOut, readOutText; // of the moment that is pointed at
    QColor cursor;
    bool outlines = false; // waiting and safe are told by their shape alone
};
// Of the look in force.
TimelineInk timelineInk();

// Where everything stands. `unit` is how much larger than at 1280 x 800 the window is.
struct TimelineGrid {
    double unit = 1;
    int text = 12;  // pixels
    int small = 11; // the least
    QRectF head, band, axis;
    QRectF plot; // from the first row to the last, without band and axis
    double labelEnd = 0;
    double valueEnd = 0;
    std::vector<QRectF> rows; // of the whole width

    double xOf(std::int64_t atMs, const TimeRange& shown) const;
    std::int64_t timeAt(double x, const TimeRange& shown) const;
};
TimelineGrid timelineGrid(const QSizeF& size, double unit, std::size_t rows);

// Marks of the axis in local time.
struct AxisMark {
    std::int64_t atMs = 0;
    QString text;
    bool midnight = false;
};
std::vector<AxisMark> axisMarks(const TimeRange& shown, double pixels, double leastPixels);

struct TimelineView {
    TimeRange shown;
    bool live = false; // the last values are of a session that runs
    bool atNow = true; // the view ends in the present
    QString beginning; // over the beginning of the axis
};

// All but the moment that is pointed at.
void paintTimeline(QPainter& painter, const TimelineGrid& grid, const Night& night,
                   const TimelineView& view);
void paintMoment(QPainter& painter, const TimelineGrid& grid, const Night& night,
                 const TimelineView& view, std::int64_t atMs);

// A disc with a tick, a ring, an octagon with a cross, a triangle, an empty circle.
void paintState(QPainter& painter, const QRectF& where, BandState state);

QFont pixelFont(int pixels, bool bold = false);

} // namespace skyhold
