// SPDX-License-Identifier: GPL-3.0-or-later
// Small pictures, drawn at whatever size and on whatever screen.
#pragma once

#include <QColor>

class QPainter;
class QRectF;

namespace skyhold {

// An outline, or filled.
void drawBell(QPainter& painter, const QRectF& place, const QColor& colour, bool filled);
// Silent: crossed out.
void drawSpeaker(QPainter& painter, const QRectF& place, const QColor& colour, bool silent);

} // namespace skyhold
