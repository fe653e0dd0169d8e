// SPDX-License-Identifier: GPL-3.0-or-later
// How the banner of a verdict looks: its ground, its sign and its letters, in the look in force.
// The states differ in shape first; at night a safe banner is the darkest of them, an unsafe one
// the brightest area of the window.
#pragma once

#include "ui/window/panel_facts.h"

#include <QColor>
#include <QRectF>

class QPainter;

namespace skyhold {

struct BannerLook {
    QColor fill; // of the card
    QColor ink;  // of letters, sign and edge
    QColor mark; // on the sign
    Qt::PenStyle edge = Qt::NoPen;
    bool striped = false; // slanted, along the upper and the lower edge
};

BannerLook bannerLook(BannerKind kind);

// The card in `area` without its words.
void drawBanner(QPainter& painter, const QRectF& area, const BannerLook& look);

// A tick in a disc, a cross in an octagon, an exclamation mark in a triangle, rings; fills `area`.
// `share` of the ring of Waiting is full.
void drawSign(QPainter& painter, const QRectF& area, BannerKind kind, const BannerLook& look,
              double share);

} // namespace skyhold
