// The change of the display unit: limits and graph history are converted to the new one.
#pragma once

#include "model/current_readings.h"
#include "records/condition_controls.h"
#include "records/unit_controls.h"

#include <functional>

namespace skyhold {

// Converts the columns of the graph history that are in the changed unit.
using ConvertHistory = std::function<void(const QString& fromCode, const QString& toCode)>;

// A speed unit was chosen: 0 km/h, 1 mph, 2 m/s, 3 knots; any other index changes nothing.
// While settings are loaded the unit is only recorded: the stored limits are in it already.
void UnitsSpeed_Click(int index, UnitControls& units, ConditionControls& conditions,
                      CurrentReadings& readings, const ConvertHistory& convertHistory);

// The same for temperatures: 0 Celsius, 1 Fahrenheit.
void UnitsTemp_Click(int index, UnitControls& units, ConditionControls& conditions,
                     CurrentReadings& readings, const ConvertHistory& convertHistory);

} // namespace skyhold
