// SPDX-License-Identifier: GPL-3.0-or-later
// Numbers, dates and times of day as a station writes them.
#pragma once

#include "platform/text_forms.h"

#include <QDate>
#include <QTime>

#include <optional>

namespace skyhold {

// A number with "." as its decimal point, whatever the locale's is, or one in the locale's form.
// Nothing for any other text and for no finite number; separators of thousands make it none, since
// no station writes them ("12,5" would be 125).
std::optional<double> ParseStationNumber(QStringView text, const NumberForms& forms);

// A number in the locale's own form; 0 for any other text.
double parseLocaleNumber(QStringView text, const NumberForms& forms);

// Three whole numbers parted by "/", "-" or "."; dateFormat 0 is day, month, year, 1 is month,
// day, year. A day or month out of range rolls over; a two-digit year is 1930..2029. Nothing for
// any other text, and nothing outside the years 100..9999.
std::optional<QDate> ParseStationDate(QStringView text, int dateFormat);

// Hours, minutes and perhaps seconds, parted by ":" or ".", of one or two digits each, by 24 hours
// or with AM or PM. A date may stand before it, parted by a blank.
std::optional<QTime> parseStationTime(QStringView text);

} // namespace skyhold
