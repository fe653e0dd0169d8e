// SPDX-License-Identifier: GPL-3.0-or-later
// Where Tab leads in a window, in words: what somebody without a mouse meets, in this order.
#pragma once

#include <QString>

class QWidget;

namespace skyhold {

// A line for each stop from `first` on until one comes again: its name as a screen reader says it,
// its kind and its value.
QString keyboardWalk(QWidget* first);

} // namespace skyhold
