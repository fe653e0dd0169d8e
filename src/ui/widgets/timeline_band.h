// SPDX-License-Identifier: GPL-3.0-or-later
// The parts of the timeline around its rows: head line, band of the verdict, what is pointed at.
#pragma once

#include "ui/widgets/timeline_paint.h"

namespace skyhold {

void paintHead(QPainter& painter, const TimelineGrid& grid, const TimelineView& view);
// The verdicts alone, within `grid.band`.
void paintVerdicts(QPainter& painter, const TimelineGrid& grid,
                   const std::vector<BandSegment>& band, const TimelineView& view);
// With their name before them.
void paintBand(QPainter& painter, const TimelineGrid& grid, const Night& night,
               const TimelineView& view);
// Over the rows, where nothing can be known: a failed source, no session.
void paintHatches(QPainter& painter, const TimelineGrid& grid, const Night& night,
                  const TimelineView& view);
// Time, verdict and causes in the head line, the time in the axis.
void paintReadOut(QPainter& painter, const TimelineGrid& grid, const MomentThen& moment, double x);

// Of each row the last value that is known.
MomentThen lastValues(const Night& night);

} // namespace skyhold
