// SPDX-License-Identifier: GPL-3.0-or-later
// Texts of other programs and of users, made fit for a line of a terminal or a list.
#pragma once

#include <QString>

namespace skyhold {

// The text on one line and without control characters, which would drive a terminal.
QString plainLine(const QString& text);

} // namespace skyhold
