// Reading the sensor program into the current readings, and painting what it said.
#pragma once

#include "conditions/alarms.h"
#include "platform/text_forms.h"
#include "records/records.h"
#include "sensor/sensor_link.h"

namespace skyhold {

// Reads the sensor program, shows its values, shows and classifies the station's temperature, and
// tests whether the sensor program has failed (code a31 and its alarm).
void ReadSensor(SensorLink& sensor, Records& records, const NumberForms& forms,
                const AlarmPlayer& player);

} // namespace skyhold
