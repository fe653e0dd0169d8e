// Wind speeds and temperatures from one display unit to another.
#pragma once

#include <QStringView>

namespace skyhold {

// Codes: "K" km/h, "M" mph, "m" m/s, "k" knots. Not rounded; with any other code the value is
// returned as it is.
double ConvertSpeed(QStringView fromCode, QStringView toCode, double value);

// To "C" from degrees Fahrenheit, to anything else from degrees Celsius; whole degrees, halves to
// the even neighbour. The caller sees to it that the codes differ.
double ConvertTemperature(QStringView fromCode, QStringView toCode, double value);

// The same for a difference of two temperatures, which has no offset.
double ConvertTemperatureDifference(QStringView fromCode, QStringView toCode, double value);

} // namespace skyhold
