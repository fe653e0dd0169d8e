// SPDX-License-Identifier: GPL-3.0-or-later
#include "gateway/readings.h"

#include <QString>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

struct Unit {
    const char16_t* text;
    double factor; // to the unit that is wanted
};

constexpr Unit kSpeeds[] = {
    {u"km/h", 1 / 3.6}, {u"mph", 0.44704}, {u"m/s", 1}, {u"kn", 1.852 / 3.6}};
// The station's own word, in any case.
constexpr Unit kPressures[] = {{u"hpa", 1},         {u"mbar", 1},      {u"mb", 1},
                               {u"inhg", 33.86389}, {u"in", 33.86389}, {u"mmhg", 1.333224},
                               {u"kpa", 10}};

std::optional<double> scaled(const QJsonObject& reading, const Unit* begin, const Unit* end) {
    const QString unit = reading[u"unit"_s].toString().trimmed().toLower();
    const Unit* found = std::find_if(begin, end, [&](const Unit& row) { return unit == row.text; });
    const QJsonValue value = reading[u"value"_s];
    if (found == end || !value.isDouble())
        return std::nullopt;
    return value.toDouble() * found->factor;
}

QJsonObject sourceOf(const QJsonObject& document, const char* name) {
    return document[u"sources"_s][QLatin1String(name)].toObject();
}

} // namespace

QJsonObject readingOf(const QJsonObject& document, const char* name) {
    const QJsonObject source = sourceOf(document, fromSensor(name) ? "sensor" : "station");
    // A station with a dead instrument shows each value that it has.
    const QString state = source[u"state"_s].toString();
    if (document[u"session"_s] != u"running"_s || (state != u"ok" && state != u"unusable") ||
        source[u"ready"_s] == false)
        return {};
    return document[u"readings"_s][QLatin1String(name)].toObject();
}

namespace {

std::optional<double> celsiusOf(const QJsonObject& reading, double zeroInFahrenheit) {
    if (!reading[u"value"_s].isDouble())
        return std::nullopt;
    const double value = reading[u"value"_s].toDouble();
    const QString unit = reading[u"unit"_s].toString();
    if (unit.endsWith(u'C'))
        return value;
    if (unit.endsWith(u'F'))
        return (value - zeroInFahrenheit) / 1.8;
    return std::nullopt;
}

} // namespace

bool fromSensor(const char* name) {
    const QLatin1String wanted(name);
    return wanted == u"cloud" || wanted == u"rain" || wanted == u"brightness" ||
           wanted == u"ambient_temperature" || wanted == u"sensor_temperature" ||
           wanted == u"rain_heater";
}

std::optional<double> temperatureOf(const QJsonObject& document, const char* name) {
    constexpr double kFreezingFahrenheit = 32;
    return celsiusOf(readingOf(document, name), kFreezingFahrenheit);
}

std::optional<double> temperatureDifferenceOf(const QJsonObject& document, const char* name) {
    return celsiusOf(readingOf(document, name), 0);
}

std::optional<double> speedOf(const QJsonObject& document, const char* name) {
    return scaled(readingOf(document, name), std::begin(kSpeeds), std::end(kSpeeds));
}

std::optional<double> plainOf(const QJsonObject& document, const char* name) {
    const QJsonValue value = readingOf(document, name)[u"value"_s];
    return value.isDouble() ? std::optional(value.toDouble()) : std::nullopt;
}

std::optional<double> directionOf(const QJsonObject& document) {
    const std::optional<double> speed = speedOf(document, "wind");
    if (speed && *speed == 0)
        return 0;
    const std::optional<double> degrees = plainOf(document, "wind_direction");
    if (!degrees || !speed)
        return std::nullopt;
    const double turned = std::fmod(*degrees, 360);
    return turned > 0 ? turned : turned + 360;
}

std::optional<double> seaPressureOf(const QJsonObject& document) {
    return scaled(readingOf(document, "pressure"), std::begin(kPressures), std::end(kPressures));
}

double pressureAt(double seaPressure, double metres, double celsius) {
    constexpr double kLapse = 0.0065; // K for each metre
    constexpr double kExponent = 5.257;
    const double fall = kLapse * metres;
    return seaPressure * std::pow(1 - fall / (celsius + fall + 273.15), kExponent);
}

std::optional<double> ageOf(const QJsonObject& document, const char* source) {
    const QJsonValue age = sourceOf(document, source)[u"age_s"_s];
    return age.isDouble() ? std::optional(age.toDouble()) : std::nullopt;
}

} // namespace skyhold
