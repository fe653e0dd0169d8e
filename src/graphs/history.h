// SPDX-License-Identifier: GPL-3.0-or-later
// The graph history: which readings become points, how many are kept, the time that they span.
#pragma once

#include "model/current_readings.h"
#include "records/file_controls.h"
#include "records/graph_history.h"

#include <QVariant>

namespace skyhold {

// Once per read cycle: stores the first reading and then every SampleEvery-th as a point. The
// table is made for the number of points in `graphNoPoints` when it has another size; its first
// reading is stored twice, so that the first drawing has a line to draw.
void AddReading(GraphHistory& history, const CurrentReadings& readings,
                const NumberBox& graphNoPoints);

// The number box GraphNoPoints has changed: its value is corrected to 20..2000. Another number
// than the table has discards all points.
void SetCapacity(GraphHistory& history, GraphControls& graphs, const ComboBox& refreshRead);

// The number box GraphFreq has changed: its value is corrected to a whole number of at least 1 and
// becomes SampleEvery. Counting goes on.
void SetSampleEvery(GraphHistory& history, GraphControls& graphs, const ComboBox& refreshRead);

// Shows the time that a full history covers, in seconds and as "02 h 00 m 00 s".
void UpdateSpanText(const GraphHistory& history, GraphControls& graphs,
                    const ComboBox& refreshRead);

// Convert the stored points to another display unit (units/conversion.h).
void convertSpeedHistory(GraphHistory& history, SpeedCode fromCode, SpeedCode toCode);
void convertTemperatureHistory(GraphHistory& history, TemperatureCode fromCode,
                               TemperatureCode toCode);

// A copy for automation clients: fields 0..7, each with points 0..capacity. Field 1 is the date,
// 2 wind, 3 gust, 4 direction, 5 temperature minus dew point, 6 humidity, 7 temperature; field 0,
// point 0, points that are not stored yet and values that are missing are empty values.
QVariant historyArray(const GraphHistory& history);

} // namespace skyhold
