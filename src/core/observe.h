// SPDX-License-Identifier: GPL-3.0-or-later
// Observe: what both sources say in a cycle. Nothing is judged and nothing is shown here.
#pragma once

#include "datafiles/station_file.h"
#include "model/observation.h"
#include "sensor/sensor_link.h"

namespace skyhold {

// The values by which the station's conditions are judged, and their texts.
void takeStationValues(Observation& observation, const NumberForms& forms);

// The values and levels of the sensor program, in the order that it expects, and whether it fails.
// Any call that failed since the last cycle counts.
void ReadSensor(SensorLink& sensor, const NumberForms& forms, Observation& observation);

// Parts of it, between two cycles: the measured values, and one level with the words for it. A
// level that could not be read stays as it was, and the answer is false.
void readSensorValues(SensorLink& sensor, const NumberForms& forms, Observation& observation);
bool readSensorLevel(SensorLink& sensor, Quantity quantity, Observation& observation);

// After that: whether a failed sensor program is the master of its switch, and its words for the
// levels in force. They are asked for in a failed cycle as well: without that, words that
// cannot be read would be a failure in every second cycle only.
void readRoleAndLabels(SensorLink& sensor, const PerQuantity<std::int32_t>& lastLevels,
                       Observation& observation);

} // namespace skyhold
