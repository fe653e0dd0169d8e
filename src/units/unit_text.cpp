// SPDX-License-Identifier: GPL-3.0-or-later
#include "units/unit_text.h"

namespace skyhold {

using namespace Qt::Literals::StringLiterals;

QString unitText(Measure measure, TemperatureCode temperatureUnit, SpeedCode speedUnit) {
    switch (measure) {
    case Measure::Speed:
        if (speedUnit == SpeedCode::MilesPerHour)
            return u"mph"_s;
        if (speedUnit == SpeedCode::MetresPerSecond)
            return u"m/s"_s;
        return speedUnit == SpeedCode::Knots ? u"kn"_s : u"km/h"_s;
    case Measure::Temperature:
    case Measure::TemperatureDifference:
        return temperatureUnit == TemperatureCode::Fahrenheit ? u"°F"_s : u"°C"_s;
    case Measure::Percent:
        return u"%"_s;
    case Measure::Cycles:
    case Measure::Kelvin:
        break;
    }
    return {};
}

} // namespace skyhold
