// SPDX-License-Identifier: GPL-3.0-or-later
// The status line and the status-code line, where every room reports.
#pragma once

#include "records/controls.h"

namespace skyhold {

// Shows the first 60 characters of `text`.
void SetStatusText(Label& statusbar1, const QString& text, Colour colour);

// Shows status codes; an empty text clears the line.
void SetErrorCodes(Label& statusbar2, const QString& text, Colour colour);

// The legend of the status codes, in the order of its window; an empty row parts the groups.
const QStringList& statusCodeLegend();

} // namespace skyhold
