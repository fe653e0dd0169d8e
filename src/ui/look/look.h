// SPDX-License-Identifier: GPL-3.0-or-later
// The looks of all windows: a dark panel made for the stated reading colours (cyan, green, yellow,
// orange, red), the same in deep red on black for eyes that are used to the dark, and the
// desktop's own. Shades of stated colours come from ui/look/shades.h.
#pragma once

#include "model/colours.h"

#include <QColor>

#include <functional>

class QApplication;
class QImage;
class QObject;

namespace skyhold {

enum class Look { Panel, Night, Desktop };

// Gives the application its style and palette, and all windows that are open.
void applyLook(QApplication& application, Look look = Look::Panel);
Look lookInForce();

// Calls `apply` now and after every change of the look, while `owner` lives.
void followLook(QObject* owner, std::function<void()> apply);

// A record's colour (0x00BBGGRR).
QColor screenColour(Colour colour);

namespace look {

struct Scheme {
    QColor window;
    QColor field;
    QColor card;  // readings
    QColor group; // settings
    QColor edge;
    QColor button;
    QColor text;
    QColor dimText;
    QColor disabledText;
    QColor accent;
    QColor primary; // the button that starts it all
    QColor loud;    // the button that ends a noise
    QColor strip;   // of the status lines
    QColor stripText;
};

namespace detail {
extern Scheme scheme;
}

// Of the look in force: what paints reads them every time.
inline const QColor& kWindow = detail::scheme.window;
inline const QColor& kField = detail::scheme.field;
inline const QColor& kCard = detail::scheme.card;
inline const QColor& kGroup = detail::scheme.group;
inline const QColor& kEdge = detail::scheme.edge;
inline const QColor& kButton = detail::scheme.button;
inline const QColor& kText = detail::scheme.text;
inline const QColor& kDimText = detail::scheme.dimText;
inline const QColor& kDisabledText = detail::scheme.disabledText;
inline const QColor& kAccent = detail::scheme.accent;
inline const QColor& kPrimary = detail::scheme.primary;
inline const QColor& kLoud = detail::scheme.loud;
inline const QColor& kStrip = detail::scheme.strip;
inline const QColor& kStripText = detail::scheme.stripText;

// How a stated colour appears in the look in force.
QColor ink(const QColor& stated, const QColor& ground); // of letters and lines
QColor light(const QColor& stated);                     // of a lamp
QColor ground(const QColor& stated);                    // of a field with letters on it
QColor inkOn(const QColor& ground);                     // of such letters
QImage graph(const QImage& graph);
QImage icon(const QImage& icon);
QImage photo(const QImage& picture); // of anything else

constexpr int kMargin = 12; // around a window's contents
constexpr int kGap = 8;     // between neighbours

} // namespace look

} // namespace skyhold
