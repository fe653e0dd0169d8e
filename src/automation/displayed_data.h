// SPDX-License-Identifier: GPL-3.0-or-later
// What the main window shows for one quantity, as text for pages and scripts.
#pragma once

#include "records/reading_display.h"
#include "records/unit_controls.h"

namespace skyhold {

// "#RRGGBB"
QString colourText(Colour colour);

// `info`, case-sensitive: "color" the condition label's text colour as "#RRGGBB", "desc" its text,
// "value" the value label's text with its unit; empty for any other. `ref`, in any case, names the
// quantity: "cloud", "rain", "wind", "gust", "dew", "humididty", "temperature" and "brightnesss",
// spelled so. For any other quantity the answer is "#80FFFF" or "n/a".
QString Kiv_DataDisplayed(const ReadingDisplay& display, const UnitControls& units,
                          const QString& info, const QString& ref);

} // namespace skyhold
