// SPDX-License-Identifier: GPL-3.0-or-later
// Small shapes of the panel that have a meaning by themselves. They fill what is named.
#pragma once

#include "ui/window/health_facts.h"
#include "ui/window/panel_facts.h"

#include <QRectF>

class QColor;
class QPainter;

namespace skyhold {

void drawHealthShape(QPainter& painter, const QRectF& square, HealthShape shape, double share);

// A disc with four marks, and a needle that points to where the wind comes from.
void drawCompass(QPainter& painter, const QRectF& square, double degrees, const QColor& needle);

// Walls under a roof, or the same with the roof moved apart; twice as wide as high.
void drawRoof(QPainter& painter, const QRectF& area, bool open, const QColor& ink);

// Unsafe values hatched, limits as lines, the value as a wedge from above; all in proportion to the
// height of `bar`.
void drawGauge(QPainter& painter, const Gauge& gauge, const QRectF& bar);

// The nearest of the 16 points of the compass, clockwise from north.
std::size_t compassPoint(double degrees);

} // namespace skyhold
