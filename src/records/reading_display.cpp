// SPDX-License-Identifier: GPL-3.0-or-later
#include "records/reading_display.h"

namespace skyhold {

void PaintLabel(Label& label, Colour colour, const QString& text) {
    label.ForeColor = colour;
    label.Caption = text;
}

} // namespace skyhold
