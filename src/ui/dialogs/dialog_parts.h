// SPDX-License-Identifier: GPL-3.0-or-later
// What all dialogs share: their margins, dim texts, the row of OK and Cancel, where they open and
// what they hold up.
#pragma once

#include <QDialog>

class QButtonGroup;
class QLabel;
class QPushButton;
class QString;
class QVBoxLayout;
class QWidget;

namespace skyhold {

// A column with the margins of a dialog, which keeps its contents' size. Its title bar offers to
// close it and nothing else.
QVBoxLayout* dialogColumn(QDialog* dialog);

// A plain text in the dimmer text colour.
QLabel* makeDimmed(const QString& text, QWidget* parent);

// Tab goes to the chosen button of an exclusive group, the arrow keys to the others.
void tabToChosen(const QButtonGroup& group);

struct OkAndCancel {
    QPushButton* ok;     // object name "ButtOK", accepts the dialog
    QPushButton* cancel; // object name "ButtCancel", rejects it
};
OkAndCancel addOkAndCancel(QDialog* dialog, QVBoxLayout* column);

// Waits for its answer. It holds up its own window alone, so that the tray icon goes on working.
int execOver(QDialog& dialog);

// An editor that holds up nothing: Stop and Stop Alarm, above all, can be pressed while it is open.
class EditorDialog : public QDialog {
  public:
    using QDialog::QDialog;

    // Waits for its answer. One editor is open at a time: a second one gives way to it, and is
    // rejected.
    int exec() override;
};

// Where a dialog opens it does not cover the banner of the main window, unless the screen leaves no
// other place. Below `item`, or above it where the screen ends, and inside the screen in any case.
void placeNear(QDialog* dialog, const QWidget* item);
void centreOver(QDialog* dialog, const QWidget* window);

} // namespace skyhold
