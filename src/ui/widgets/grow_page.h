// SPDX-License-Identifier: GPL-3.0-or-later
// Lets a page of settings grow with its window: letters, boxes and rows together.
#pragma once

#include <QWidget>

namespace skyhold {

// `unit` times as large as the page was made; again after each change. What sets a size of its own
// afterwards sets it as of unit 1.
void growPage(QWidget* page, qreal unit);

// A widget that chooses its size by the window itself.
void growsByItself(QWidget* widget);

} // namespace skyhold
