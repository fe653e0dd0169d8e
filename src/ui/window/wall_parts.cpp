// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window/wall_parts.h"

#include "ui/look/look.h"
#include "ui/window/banner_look.h"
#include "ui/window/panel_inks.h"
#include "ui/window/panel_shapes.h"

#include <QPainter>

using namespace Qt::Literals::StringLiterals;

namespace skyhold::wall {

namespace {

constexpr qreal kCellLetters = 38;
constexpr qreal kShape = 36;
constexpr qreal kShapeSpace = 12; // between a shape and its caption

QFont letters(const QFont& base, qreal size, bool bold) {
    QFont font = base;
    font.setPixelSize(static_cast<int>(size));
    font.setBold(bold);
    return font;
}

qreal widthOf(const QPainter& painter, const QString& text, qreal size, bool bold) {
    return QFontMetricsF(letters(painter.font(), size, bold)).horizontalAdvance(text);
}

void drawGround(QPainter& painter, const QRectF& area, const Tile& tile) {
    if (tile.facts.culprit)
        drawCard(painter, area, panel::alarmGround(), QPen(panel::alarmEdge(), 7));
    else if (tile.lost)
        drawCard(painter, area, look::kField, QPen(panel::warningEdge(), 3, Qt::DashLine));
    else if (!tile.live)
        drawCard(painter, area, look::kWindow, QPen(look::kEdge, 2));
    else if (tile.facts.nearest)
        drawCard(painter, area, look::kCard, QPen(look::kText, 4));
    else
        drawCard(painter, area, look::kCard);
}

// What is exceeded and since when.
void drawFoot(QPainter& painter, const QRectF& foot, const QString& text) {
    painter.fillRect(foot, panel::alarmStrip());
    painter.setPen(panel::onAlarmStrip());
    drawFitted(painter, foot.adjusted(8, 0, -8, 0), text, 40, true, Qt::AlignCenter);
}

qreal shapeWidth(const Cell& cell) {
    if (cell.roofOpen)
        return 1.4 * kShape;
    return cell.health ? kShape : 0;
}

qreal widthOf(const QPainter& painter, const Cell& cell, qreal size) {
    const qreal shape = shapeWidth(cell);
    return (shape > 0 ? shape + kShapeSpace : 0) + widthOf(painter, cell.caption, size, false) +
           widthOf(painter, cell.word, size, true);
}

void drawCell(QPainter& painter, const QRectF& place, const Cell& cell, qreal size) {
    const bool sounds = cell.health && cell.health->sounds();
    const bool failed = cell.health && cell.health->failed();
    if (sounds || failed)
        drawCard(painter, place.adjusted(-14, 8, 14, -8),
                 sounds ? panel::alarmGround() : look::kField,
                 QPen(sounds ? panel::alarmEdge() : panel::warningEdge(), 4));
    const QColor loud = panel::warning(sounds ? panel::alarmGround() : look::kField);
    const qreal shape = shapeWidth(cell);
    QRectF words = place;
    if (shape > 0) {
        const QRectF square(place.left(), place.center().y() - kShape / 2, shape, kShape);
        if (cell.health)
            drawHealthShape(painter, square, cell.health->shape, cell.health->share);
        else
            drawRoof(painter, square.adjusted(0, 2, 0, -2), *cell.roofOpen, cell.ink);
        words.setLeft(square.right() + kShapeSpace);
    }
    painter.setPen(failed ? loud : look::kDimText);
    drawFitted(painter, words, cell.caption, size, false);
    words.setLeft(words.left() + widthOf(painter, cell.caption, size, false));
    const bool warns = failed || (cell.health && cell.health->warns);
    painter.setPen(warns ? loud : cell.ink.isValid() ? cell.ink : look::kText);
    drawFitted(painter, words.adjusted(0, 0, 2, 0), cell.word, size, true);
}

} // namespace

void drawFitted(QPainter& painter, const QRectF& area, const QString& text, qreal size, bool bold,
                int flags) {
    const QFont base = painter.font();
    qreal fitted = size;
    const auto fits = [&] {
        const QRectF needed =
            QFontMetricsF(letters(base, fitted, bold)).boundingRect(area, flags, text);
        return needed.width() <= area.width() && needed.height() <= area.height() + 2;
    };
    while (fitted > size / 2 && !fits())
        fitted -= 2;
    painter.setFont(letters(base, fitted, bold));
    painter.drawText(area, flags, text);
    painter.setFont(base);
}

void drawCard(QPainter& painter, const QRectF& area, const QColor& fill, const QPen& edge) {
    const bool none = edge.style() == Qt::NoPen;
    // At night as dark as the window.
    const bool dark = none && lookInForce() == Look::Night;
    painter.setPen(dark ? QPen(look::kEdge, 2) : edge);
    painter.setBrush(fill);
    const qreal inset = dark ? 1 : none ? 0 : edge.widthF() / 2;
    painter.drawRoundedRect(area.adjusted(inset, inset, -inset, -inset), 8, 8);
}

void drawTile(QPainter& painter, const QRectF& area, const Tile& tile) {
    drawGround(painter, area, tile);
    const qreal row = area.height() / 12;
    const QRectF inside = area.adjusted(22, 0, -22, 0);
    const auto part = [&inside, row](qreal from, qreal rows) {
        return QRectF(inside.left(), inside.top() + from * row, inside.width(), rows * row);
    };
    painter.setPen(tile.headerInk);
    drawFitted(painter, part(0.3, 2.4), tile.header, 38, false);
    const qreal unit = widthOf(painter, tile.unit, 32, false);
    if (widthOf(painter, tile.header, 38, false) + unit + 10 <= inside.width() && !tile.lost) {
        painter.setPen(look::kDimText);
        drawFitted(painter, part(0.3, 2.4), tile.unit, 32, false,
                   Qt::AlignRight | Qt::AlignVCenter);
    }
    painter.setPen(tile.lost ? look::kDimText : tile.valueInk);
    drawFitted(painter, part(2.3, 5), tile.lost ? u"–"_s : tile.value, 86, true);
    painter.setPen(tile.lost ? panel::warning(look::kField) : tile.levelInk);
    const QRectF level = part(7, 2.6);
    drawFitted(painter, level, tile.lost ? u"no new data"_s : tile.level, 42, true);
    if (tile.lost)
        return;
    painter.setPen(look::kDimText);
    drawFitted(painter, level, tile.spread, 36, false, Qt::AlignRight | Qt::AlignVCenter);
    if (tile.facts.culprit) {
        const qreal side = 3.2 * row;
        const QRectF sign(inside.right() - side, area.top() + 3.2 * row, side, side);
        if (inside.left() + widthOf(painter, tile.value, 86, true) + 10 <= sign.left())
            drawSign(painter, sign, BannerKind::Unsafe,
                     {.fill = panel::alarmGround(),
                      .ink = panel::alarmEdge(),
                      .mark = panel::alarmGround()},
                     0);
    }
    if (tile.facts.culprit && !tile.facts.foot.isEmpty())
        drawFoot(painter,
                 {area.left(), area.top() + 9.6 * row, area.width(), area.height() - 9.6 * row},
                 tile.facts.foot);
    else if (tile.facts.gauge)
        drawGauge(painter, *tile.facts.gauge, part(10.5, 0.6));
    if (tile.direction) {
        const qreal side = 4.4 * row;
        drawCompass(painter, {inside.right() - side, area.bottom() - side - 10, side, side},
                    *tile.direction, tile.live ? look::kText : look::kDimText);
    }
}

void drawCells(QPainter& painter, const QRectF& area, const std::vector<Cell>& cells) {
    const QRectF inside = area.adjusted(24, 0, -24, 0);
    constexpr qreal kLeastBetween = 34;
    const auto allOf = [&](qreal size) {
        qreal all = 0;
        for (const Cell& cell : cells)
            all += widthOf(painter, cell, size);
        return all;
    };
    const auto gaps = static_cast<qreal>(cells.size() - 1);
    qreal size = kCellLetters;
    while (size > 24 && allOf(size) + gaps * kLeastBetween > inside.width())
        size -= 1;
    const qreal between = gaps > 0 ? (inside.width() - allOf(size)) / gaps : 0;
    qreal left = inside.left();
    for (const Cell& cell : cells) {
        const qreal width = widthOf(painter, cell, size);
        drawCell(painter, {left, inside.top(), width, inside.height()}, cell, size);
        left += width + between;
        if (&cell != &cells.back())
            painter.fillRect(
                QRectF(left - between / 2 - 1, inside.top() + 20, 2, inside.height() - 40),
                look::kEdge);
    }
}

} // namespace skyhold::wall
