// SPDX-License-Identifier: GPL-3.0-or-later
// Wind speeds and temperatures from one display unit to another.
#pragma once

#include "model/units.h"

namespace skyhold {

// Not rounded.
double ConvertSpeed(SpeedCode fromCode, SpeedCode toCode, double value);

// To Celsius from degrees Fahrenheit, to anything else from degrees Celsius; whole degrees, halves
// to the even neighbour. The caller ensures that the codes differ.
double ConvertTemperature(TemperatureCode fromCode, TemperatureCode toCode, double value);

// The same for a difference of two temperatures, which has no offset.
double ConvertTemperatureDifference(TemperatureCode fromCode, TemperatureCode toCode, double value);

} // namespace skyhold
