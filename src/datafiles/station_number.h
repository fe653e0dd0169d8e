// Numbers, dates and times of day as a station writes them.
#pragma once

#include "platform/text_forms.h"

#include <QDate>
#include <QTime>

#include <optional>

namespace skyhold {

// A number with "." as its decimal point, whatever the locale's is; one in the locale's form is
// read too. 0 for a text that stands for no finite number.
double ParseStationNumber(QStringView text, const NumberForms& forms);

// True for a text that ParseStationNumber reads as a number that can be meant: one with separators
// of thousands is none, since no station writes them ("12,5" would be 125).
bool isStationNumber(QStringView text, const NumberForms& forms);

// A number in the locale's own form; 0 for any other text.
double parseLocaleNumber(QStringView text, const NumberForms& forms);

// Three whole numbers parted by "/", "-" or "."; dateFormat 0 is day, month, year, 1 is month,
// day, year. A day or month out of range rolls over; a two-digit year is 1930..2029. Nothing for
// any other text, and nothing outside the years 100..9999.
std::optional<QDate> ParseStationDate(QStringView text, int dateFormat);

// h:mm or hh:mm, with or without seconds, by 24 hours or with AM or PM.
std::optional<QTime> parseStationTime(QStringView text);

} // namespace skyhold
