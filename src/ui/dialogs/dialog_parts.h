// What all dialogs share: their margins, dim texts, the row of OK and Cancel, and where they open.
#pragma once

class QButtonGroup;
class QDialog;
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

// Below `item`, or above it where the screen ends, and inside the screen in any case.
void placeNear(QDialog* dialog, const QWidget* item);
void centreOver(QDialog* dialog, const QWidget* window);

} // namespace skyhold
