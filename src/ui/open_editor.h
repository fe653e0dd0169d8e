// How an item's own editor is opened: the right button released over it, or, with the item in
// focus, the menu key, the space bar or Return.
#pragma once

#include <functional>

class QWidget;

namespace skyhold {

void openEditorOn(QWidget* item, std::function<void()> open);

} // namespace skyhold
