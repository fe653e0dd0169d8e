// SPDX-License-Identifier: GPL-3.0-or-later
// What the panel for a far screen is painted of. Lengths are of a screen of 1920 by 1080.
#pragma once

#include "ui/window/health_facts.h"
#include "ui/window/panel_facts.h"

#include <QColor>
#include <QPen>
#include <QRectF>

class QPainter;

namespace skyhold::wall {

// Smaller, down to half its size, where it does not fit.
void drawFitted(QPainter& painter, const QRectF& area, const QString& text, qreal size, bool bold,
                int flags = Qt::AlignLeft | Qt::AlignVCenter);

void drawCard(QPainter& painter, const QRectF& area, const QColor& fill,
              const QPen& edge = QPen(Qt::NoPen));

// One quantity.
struct Tile {
    QString header, unit, value, level, spread;
    QColor headerInk, valueInk, levelInk;
    bool live = false; // of a session that runs
    bool lost = false; // its source gives no data
    TileFacts facts;
    std::optional<double> direction; // of the wind, degrees: a compass
};
void drawTile(QPainter& painter, const QRectF& area, const Tile& tile);

// One of the states in the row below the tiles: a health fact, the roof, the time.
struct Cell {
    QString caption, word;
    QColor ink{};
    std::optional<HealthFact> health{};
    std::optional<bool> roofOpen{};
};
// Side by side, each as wide as it needs, with the rest of the room between them.
void drawCells(QPainter& painter, const QRectF& area, const std::vector<Cell>& cells);

} // namespace skyhold::wall
