// SPDX-License-Identifier: GPL-3.0-or-later
// Units as people write them.
#pragma once

#include "model/quantity.h"
#include "model/units.h"

#include <QString>

namespace skyhold {

// The unit of a measure by the codes in force: "°C", "km/h", "%"; empty for a plain count.
QString unitText(Measure measure, TemperatureCode temperatureUnit, SpeedCode speedUnit);

// The same as the window names it beside values and limits: "km/hr", "knot".
QString shownSpeedUnit(SpeedCode speedUnit);
QString shownUnit(Measure measure, TemperatureCode temperatureUnit, SpeedCode speedUnit);
// A sentence with such units behind its numbers in the place of those of unitText.
QString withShownUnits(QString sentence);

} // namespace skyhold
