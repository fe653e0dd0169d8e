// SPDX-License-Identifier: GPL-3.0-or-later
// The sensor program's graphs as other programs read them.
#pragma once

#include "sensorhost/sensor_source.h"

#include <QVariant>

namespace skyhold {

enum class SensorGraph { Cloud, Rain, Day, Temp };

// History of a graph as (field, point): field 1 the date, 2 the value, 3 the condition (for the
// temperature graph: the air and the sky sensor). Point 0 and field 0 are not used. Temperatures
// are in the unit of the letter "C" or "F"; what was not measured is 0.
QList<QVariantList> sensorGraph(SensorGraph graph, const std::vector<SensorReading>& history,
                                const QString& temperatureUnit);

// From °C to the unit of the letter.
double sensorTemperatureIn(const QString& unit, double celsius);

} // namespace skyhold
