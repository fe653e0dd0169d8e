// Which unit a station file's unit text means.
#pragma once

#include "records/unit_controls.h"

namespace skyhold {

// "C" when a piece of StringDC occurs in the text, else "F" for StringDF, else " ". Upper and
// lower case differ.
QString DetectTemperatureUnit(QStringView unitText, const UnitControls& units);

// "K", "M", "m" or "k" by the first of StringKPH, StringMPH, StringMPS, StringKNOTS in which the
// upper-cased text occurs; `current` when there is none. An empty text occurs in the first.
QString DetectSpeedUnit(QStringView unitText, const UnitControls& units, const QString& current);

} // namespace skyhold
