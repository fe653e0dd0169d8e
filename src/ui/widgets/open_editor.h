// SPDX-License-Identifier: GPL-3.0-or-later
// How an item's own editor is opened: the right button released over it, or, with the item in
// focus, the context-menu key, Shift+F10, the space bar or Return.
#pragma once

#include <functional>

class QAbstractButton;
class QKeyEvent;
class QString;
class QWidget;

namespace skyhold {

void openEditorOn(QWidget* item, std::function<void()> open);

// The same, with a pencil at the item's end that opens the editor on a click, and a tool tip.
// `what` says what the editor does: "Change this colour".
void makeEditable(QWidget* item, const QString& what, std::function<void()> open);

// For an editor that has a button of its own: a click, and all that opens it elsewhere.
void openEditorFrom(QAbstractButton* button, std::function<void()> open);

// The context-menu key or Shift+F10.
bool asksForMenu(const QKeyEvent& event);

} // namespace skyhold
