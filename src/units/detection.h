// SPDX-License-Identifier: GPL-3.0-or-later
// Which unit a station file's unit text means.
#pragma once

#include "records/unit_controls.h"

namespace skyhold {

// Celsius when a piece of StringDC occurs in the text, else Fahrenheit for StringDF, else Unknown.
// Upper and lower case differ.
TemperatureCode DetectTemperatureUnit(QStringView unitText, const UnitControls& units);

// By the first of StringKPH, StringMPH, StringMPS, StringKNOTS in which the upper-cased text
// occurs; `current` when there is none. An empty text occurs in the first.
SpeedCode DetectSpeedUnit(QStringView unitText, const UnitControls& units, SpeedCode current);

} // namespace skyhold
