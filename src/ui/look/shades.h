// SPDX-License-Identifier: GPL-3.0-or-later
// How colours are shown that were stated: those of the conditions, the lamps and the swatches.
// Rules of colours alone; what is stored is never changed.
#pragma once

#include <QColor>
#include <QImage>

namespace skyhold {

// Contrast between two opaque colours, from 1 (the same) to 21 (black and white).
double contrast(const QColor& one, const QColor& other);

// `ink` made darker or lighter, at its own hue, until it can be read on `ground`: until the two
// have the contrast `wanted`.
constexpr double kReadable = 4.5;
QColor readableInk(const QColor& ink, const QColor& ground, double wanted = kReadable);

// Night vision: shades of red alone, on black. The nearer a colour is to red, the brighter its
// shade, so that what is unsafe stands out; green and all colder colours are the darkest.
QColor nightInk(const QColor& colour);    // letters and lines, on the grounds below or on black
QColor nightLight(const QColor& colour);  // a lamp
QColor nightGround(const QColor& colour); // a field with letters on it
// A graph: bright line and letters over dark bands, the warmer bands less dark.
QImage nightPicture(const QImage& picture);
// A graph in the dark panel: grounds dark in their own hues, line and letters bright.
QImage darkPicture(const QImage& picture);
// Any other picture: its brightness in dim red.
QImage nightPhoto(const QImage& picture);

} // namespace skyhold
