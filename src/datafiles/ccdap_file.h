// SPDX-License-Identifier: GPL-3.0-or-later
// The weather file for CCDAutopilot: one record of fixed layout, rewritten in every cycle.
#pragma once

#include "model/current_readings.h"
#include "platform/clock.h"
#include "platform/text_forms.h"
#include "records/file_controls.h"

#include <QByteArray>

namespace skyhold {

constexpr int kCcdapRecordLength = 100;

// The formatted value, right-aligned in width - 1 characters (of a longer text the last ones), and
// a blank.
QString FormatFixedField(double value, QStringView format, int width, const NumberForms& forms);

// Exactly kCcdapRecordLength bytes of ANSI text; values in the units in force. Reads the clock for
// the date, the time and the day number, in this order.
QByteArray ccdapRecord(const CurrentReadings& readings, const Clock& clock,
                       const NumberForms& forms);

// Writes the record over the first bytes of the file. Without a file name there is nothing to do.
// False when the record could not be written.
bool WriteCcdapFile(const CcdapControls& controls, const CurrentReadings& readings,
                    const Clock& clock, const NumberForms& forms);

} // namespace skyhold
