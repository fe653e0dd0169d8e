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

} // namespace skyhold
