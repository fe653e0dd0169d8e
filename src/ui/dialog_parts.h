// What all dialogs share: their margins, the row of OK and Cancel, and where they open.
#pragma once

class QDialog;
class QLayout;
class QPushButton;
class QVBoxLayout;
class QWidget;

namespace skyhold {

// A column with the margins of a dialog, which keeps its contents' size.
QVBoxLayout* dialogColumn(QDialog* dialog);

struct OkAndCancel {
    QPushButton* ok;     // object name "ButtOK", accepts the dialog
    QPushButton* cancel; // object name "ButtCancel", rejects it
};
OkAndCancel addOkAndCancel(QDialog* dialog, QVBoxLayout* column);

// Below `item`, or above it where the screen ends, and inside the screen in any case.
void placeNear(QDialog* dialog, const QWidget* item);
void centreOver(QDialog* dialog, const QWidget* window);

} // namespace skyhold
