// Keeps the focus in a box until what it holds is accepted.
#pragma once

#include <QString>

#include <functional>

class QWidget;

namespace skyhold {

// When the user leaves `box` for another control, `fault` is asked; a text refuses: the click that
// would have left has no effect, the focus stays, and `tell` shows the text. Going to another
// window or a menu is no leaving.
void holdFocusWhile(QWidget* box, std::function<QString()> fault,
                    std::function<void(const QString&)> tell);

} // namespace skyhold
