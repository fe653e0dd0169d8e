// SPDX-License-Identifier: GPL-3.0-or-later
// The monitor's message dialog.
#pragma once

#include "records/messages.h"

#include <QDialog>

#include <vector>

class QVBoxLayout;

namespace skyhold {

class KivSHMainform;

// One message with the buttons of its style: OK, Yes and No, or Yes, No and Cancel. Closed any
// other way than by a button it answers the safest: OK, No, Cancel.
class KivError : public QDialog {
    Q_OBJECT

  public:
    // `caption` titles a message that brings no title of its own.
    KivError(const Message& message, const QString& caption, QWidget* parent);

    // Shows the message, centred over the parent's window, until it is answered.
    MessageAnswer ask();
    // The same without waiting; the dialog is gone once it is closed.
    void showBeside();

  private:
    struct Choice {
        const char* caption;
        MessageAnswer answer;
    };
    void addButtons(const std::vector<Choice>& choices, QVBoxLayout* column);

    MessageAnswer answer_ = MessageAnswer::Ok;
};

// Shows messages over the main window; a minimised window is restored first.
ShowMessage makeMessageDialog(KivSHMainform& window);

// Messages that do not wait for an answer: the window stays usable beside them.
struct Notices {
    std::function<void(const Message&)> show;
    std::function<void()> close; // the one that is still shown
};
Notices makeNotices(KivSHMainform& window);

} // namespace skyhold
