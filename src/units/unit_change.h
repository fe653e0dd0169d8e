// SPDX-License-Identifier: GPL-3.0-or-later
// The change of the display unit: limits and graph history are converted to the new one.
#pragma once

#include "model/current_readings.h"
#include "records/condition_controls.h"
#include "records/unit_controls.h"

#include <functional>

namespace skyhold {

// Converts the columns of the graph history that are in the changed unit.
template <class Code>
using ConvertHistory = std::function<void(Code fromCode, Code toCode)>;

// A speed unit was chosen, an index of kSpeedCodes; any other index changes nothing. While
// settings are loaded the unit is only recorded: the stored limits are in it already.
void UnitsSpeed_Click(int index, UnitControls& units, ConditionControls& conditions,
                      CurrentReadings& readings, const ConvertHistory<SpeedCode>& convertHistory);

// The same for temperatures.
void UnitsTemp_Click(int index, UnitControls& units, ConditionControls& conditions,
                     CurrentReadings& readings,
                     const ConvertHistory<TemperatureCode>& convertHistory);

} // namespace skyhold
