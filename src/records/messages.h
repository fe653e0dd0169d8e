// SPDX-License-Identifier: GPL-3.0-or-later
// The monitor's message dialog as a request and an answer; who shows it is set at start-up.
#pragma once

#include <QString>

#include <functional>

namespace skyhold {

enum class MessageStyle { Ok = 0, YesNoCancel = 3, YesNo = 4 };
enum class MessageAnswer { Ok = 1, Cancel = 2, Yes = 6, No = 7 };

struct Message {
    QString text;
    MessageStyle style = MessageStyle::Ok;
    QString title;      // empty: the main window's caption
    QString about = {}; // stands over the text: "Wind"; empty: nothing does
};

// Shows the message and returns when it has been answered; events are served meanwhile.
using ShowMessage = std::function<MessageAnswer(const Message&)>;

} // namespace skyhold
