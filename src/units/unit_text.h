// SPDX-License-Identifier: GPL-3.0-or-later
// Units as people write them.
#pragma once

#include "model/quantity.h"
#include "model/units.h"

#include <QString>

namespace skyhold {

// The unit of a measure by the codes in force: "°C", "km/h", "%"; empty for a plain count.
QString unitText(Measure measure, TemperatureCode temperatureUnit, SpeedCode speedUnit);

} // namespace skyhold
