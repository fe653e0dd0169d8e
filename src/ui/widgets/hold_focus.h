// SPDX-License-Identifier: GPL-3.0-or-later
// When the focus leaves a control, and a box that it does not leave before its text is accepted.
#pragma once

#include <QString>
#include <Qt>

#include <functional>

class QWidget;

namespace skyhold {

// When the user leaves `box` for another control, or presses Return in it, `fault` is asked; a text
// refuses: the click or key has no effect, the focus stays, and `show` shows the text. Going to
// another window or a menu does not count as leaving.
void holdFocusWhile(QWidget* box, std::function<QString()> fault,
                    std::function<void(const QString&)> show);

// Whether the focus has gone to another control of the window, and not to another window or a menu.
bool leavesControl(Qt::FocusReason reason);

} // namespace skyhold
