// SPDX-License-Identifier: GPL-3.0-or-later
// What the user data file can hold: 25 items of the current readings, as texts of a line.
#pragma once

#include "model/current_readings.h"
#include "platform/text_forms.h"
#include "records/file_controls.h"

#include <QByteArray>

#include <functional>

namespace skyhold {

// The description of a condition's level: "Unknown" for 0, the user's or the sensor program's
// words for 1..3, else empty.
using DescribeLevel = std::function<QString(Quantity quantity, std::int32_t level)>;

struct DataItemSource {
    const CurrentReadings& readings; // display units
    const NumberForms& forms;
    DescribeLevel describe; // asked only for items that are written
};

// The value text of item 1..25; empty for any other number. Date and time are those of the sensor
// program's last reading.
QString FormatDataItem(int item, const DataItemSource& source);

using DataColumns = decltype(DataFileControls::Columns);

// The columns that are switched on, in their order, as fields in double quotes with commas between
// them; ANSI text without a line end.
QByteArray dataHeaderLine(const DataColumns& columns);
QByteArray dataLine(const DataColumns& columns, const DataItemSource& source);

} // namespace skyhold
