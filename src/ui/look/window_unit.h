// SPDX-License-Identifier: GPL-3.0-or-later
// How large a window's contents are: all of them grow and shrink together.
#pragma once

#include <QWidget>

#include <algorithm>

namespace skyhold {

// How many times as large as in a window of 1280 by 800 they are, no smaller than can still be
// read.
inline qreal windowUnit(const QWidget& of) {
    constexpr qreal kLeast = 0.86;
    const QSizeF size = of.window()->size();
    return std::max(kLeast, std::min(size.width() / 1280, size.height() / 800));
}

} // namespace skyhold
