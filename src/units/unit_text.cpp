// SPDX-License-Identifier: GPL-3.0-or-later
#include "units/unit_text.h"

#include <QRegularExpression>

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

QString shownSpeedUnit(SpeedCode speedUnit) {
    switch (speedUnit) {
    case SpeedCode::MilesPerHour:
        return u"mph"_s;
    case SpeedCode::MetresPerSecond:
        return u"m/s"_s;
    case SpeedCode::Knots:
        return u"knot"_s;
    case SpeedCode::KilometresPerHour:
        break;
    }
    return u"km/hr"_s;
}

QString shownUnit(Measure measure, TemperatureCode temperatureUnit, SpeedCode speedUnit) {
    return measure == Measure::Speed ? shownSpeedUnit(speedUnit)
                                     : unitText(measure, temperatureUnit, speedUnit);
}

QString withShownUnits(QString sentence) {
    static const QRegularExpression kilometres(u"(?<=\\d) km/h\\b"_s);
    static const QRegularExpression knots(u"(?<=\\d) kn\\b"_s);
    return sentence.replace(kilometres, u" km/hr"_s).replace(knots, u" knot"_s);
}

} // namespace skyhold
