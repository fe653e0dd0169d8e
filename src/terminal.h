// SPDX-License-Identifier: GPL-3.0-or-later
// The program's face on a terminal: messages instead of dialogs, and a line for every read cycle.
#pragma once

#include "records/messages.h"
#include "records/records.h"

namespace skyhold {

// Writes messages to standard error and answers with the safest button: OK, No or Cancel.
ShowMessage terminalMessages();

// Time, verdict and its cause, each quantity with its condition, status line and codes.
QString cycleLine(const Records& records, const QDateTime& now);

} // namespace skyhold
