// SPDX-License-Identifier: GPL-3.0-or-later
#include "units/conversion.h"

#include "platform/text_forms.h"

namespace skyhold {

namespace {

struct SpeedFactor {
    SpeedCode from;
    SpeedCode to;
    double multiply;
    double divide;
};

constexpr SpeedCode kKmh = SpeedCode::KilometresPerHour;
constexpr SpeedCode kMph = SpeedCode::MilesPerHour;
constexpr SpeedCode kMs = SpeedCode::MetresPerSecond;
constexpr SpeedCode kKnots = SpeedCode::Knots;

// Exact: 1 mph = 1.609344 km/h, 1 knot = 1.852 km/h, 1 m/s = 3.6 km/h.
constexpr SpeedFactor kSpeedFactors[] = {
    {kKmh, kMph, 1, 1.609344}, {kKmh, kMs, 1000, 3600},         {kKmh, kKnots, 1, 1.852},
    {kMph, kKmh, 1.609344, 1}, {kMph, kMs, 1609.344, 3600},     {kMph, kKnots, 1.609344, 1.852},
    {kMs, kKmh, 3600, 1000},   {kMs, kMph, 3.6, 1.609344},      {kMs, kKnots, 3.6, 1.852},
    {kKnots, kKmh, 1.852, 1},  {kKnots, kMph, 1.852, 1.609344}, {kKnots, kMs, 1.852, 3.6},
};

// Adding zero turns the negative zero of a small negative value into plain 0, which shows no sign.
double wholeDegrees(double value) {
    return roundHalfEven(value) + 0.0;
}

} // namespace

double ConvertSpeed(SpeedCode fromCode, SpeedCode toCode, double value) {
    for (const SpeedFactor& factor : kSpeedFactors) {
        if (fromCode == factor.from && toCode == factor.to)
            return value * factor.multiply / factor.divide;
    }
    return value;
}

double ConvertTemperature(TemperatureCode /*fromCode*/, TemperatureCode toCode, double value) {
    return wholeDegrees(toCode == TemperatureCode::Celsius ? (value - 32) * 5 / 9
                                                           : value * 9 / 5 + 32);
}

double ConvertTemperatureDifference(TemperatureCode /*fromCode*/, TemperatureCode toCode,
                                    double value) {
    return wholeDegrees(toCode == TemperatureCode::Celsius ? value * 5 / 9 : value * 9 / 5);
}

} // namespace skyhold
