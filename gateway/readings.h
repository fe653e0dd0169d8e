// SPDX-License-Identifier: GPL-3.0-or-later
// The document's readings in the units that the network's clients expect.
#pragma once

#include <QJsonObject>

#include <optional>

namespace skyhold {

// Each is known only while its source is well: what a source said before it failed is not known
// now. In °C, %, m/s and degrees; the direction is 0 in a calm and 360 in the north.
std::optional<double> temperatureOf(const QJsonObject& document, const char* name);
// A span of temperature, as the dew-point spread.
std::optional<double> temperatureDifferenceOf(const QJsonObject& document, const char* name);
std::optional<double> speedOf(const QJsonObject& document, const char* name);
std::optional<double> plainOf(const QJsonObject& document, const char* name);
std::optional<double> directionOf(const QJsonObject& document);
// hPa, as the station says it, which is at sea level.
std::optional<double> seaPressureOf(const QJsonObject& document);
// hPa at a height above the sea, by the standard atmosphere and the temperature there.
double pressureAt(double seaPressure, double metres, double celsius);

// The document's entry itself; empty in the same way.
QJsonObject readingOf(const QJsonObject& document, const char* name);

bool fromSensor(const char* name);
// Seconds since its source was read; nothing when that is not known.
std::optional<double> ageOf(const QJsonObject& document, const char* source);

} // namespace skyhold
