// The look of all windows: one dark palette, made for the stated reading colours (cyan, green,
// yellow, orange, red), and the flat drawing of controls.
#pragma once

#include "records/colours.h"

#include <QColor>

class QApplication;

namespace skyhold {

// Gives the application its style and palette. Called once, before the first window.
void applyLook(QApplication& application);

// A record's colour (0x00BBGGRR) on the screen.
QColor screenColour(Colour colour);

namespace look {

const QColor kWindow(0x1b, 0x21, 0x28);
const QColor kField(0x11, 0x15, 0x1a);
const QColor kCard(0x26, 0x2f, 0x39);  // readings
const QColor kGroup(0x20, 0x27, 0x2f); // settings
const QColor kEdge(0x3b, 0x47, 0x54);
const QColor kButton(0x31, 0x3c, 0x48);
const QColor kText(0xe8, 0xed, 0xf2);
const QColor kDimText(0xa3, 0xb0, 0xbd);
const QColor kDisabledText(0x78, 0x84, 0x90);
const QColor kAccent(0x4a, 0xa3, 0xdf);
const QColor kPrimary(0x1f, 0x6f, 0xa8); // the button that starts it all
// The status lines show navy and dark green, which need a light ground.
const QColor kStrip(0xec, 0xef, 0xf2);
const QColor kStripText(0x1b, 0x21, 0x28);

constexpr int kMargin = 12; // around a window's contents
constexpr int kGap = 8;     // between neighbours

} // namespace look

} // namespace skyhold
