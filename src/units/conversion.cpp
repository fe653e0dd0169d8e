#include "units/conversion.h"

#include "platform/text_forms.h"

namespace skyhold {

namespace {

struct SpeedFactor {
    char16_t from;
    char16_t to;
    double multiply;
    double divide;
};

// Exact: 1 mph = 1.609344 km/h, 1 knot = 1.852 km/h, 1 m/s = 3.6 km/h.
constexpr SpeedFactor kSpeedFactors[] = {
    {u'K', u'M', 1, 1.609344}, {u'K', u'm', 1000, 3600},      {u'K', u'k', 1, 1.852},
    {u'M', u'K', 1.609344, 1}, {u'M', u'm', 1609.344, 3600},  {u'M', u'k', 1.609344, 1.852},
    {u'm', u'K', 3600, 1000},  {u'm', u'M', 3.6, 1.609344},   {u'm', u'k', 3.6, 1.852},
    {u'k', u'K', 1.852, 1},    {u'k', u'M', 1.852, 1.609344}, {u'k', u'm', 1.852, 3.6},
};

// Adding zero turns the negative zero of a small negative value into plain 0, which shows no sign.
double wholeDegrees(double value) {
    return roundHalfEven(value) + 0.0;
}

} // namespace

double ConvertSpeed(QStringView fromCode, QStringView toCode, double value) {
    if (fromCode.size() != 1 || toCode.size() != 1)
        return value;
    for (const SpeedFactor& factor : kSpeedFactors) {
        if (fromCode[0] == factor.from && toCode[0] == factor.to)
            return value * factor.multiply / factor.divide;
    }
    return value;
}

double ConvertTemperature(QStringView /*fromCode*/, QStringView toCode, double value) {
    return wholeDegrees(toCode == u"C" ? (value - 32) * 5 / 9 : value * 9 / 5 + 32);
}

double ConvertTemperatureDifference(QStringView /*fromCode*/, QStringView toCode, double value) {
    return wholeDegrees(toCode == u"C" ? value * 5 / 9 : value * 9 / 5);
}

} // namespace skyhold
