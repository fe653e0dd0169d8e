// SPDX-License-Identifier: GPL-3.0-or-later
// Colours of the panel that stand for a state, in the look in force. Letters can be read on the
// ground that is named, lines and shapes be told from it.
#pragma once

#include <QColor>

namespace skyhold::panel {

// A source that is old or failed, a sound that cannot be heard: amber.
QColor warning(const QColor& ground); // letters, on this ground
QColor warningEdge();                 // around a tile or a field, on the ground of fields

// What speaks for unsafe, and a sounding alarm: red.
QColor alarmGround();
QColor alarmEdge();
QColor alarmStrip(); // full, with letters in `onAlarmStrip`
QColor onAlarmStrip();

// On a card.
QColor working();     // a dot
QColor limitLine();   // where a gauge becomes unsafe
QColor limitNumber(); // its letters

} // namespace skyhold::panel
