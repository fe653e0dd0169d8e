#include "units/unit_text.h"

namespace skyhold {

using namespace Qt::Literals::StringLiterals;

QString unitText(Measure measure, const QString& temperatureUnit, const QString& speedUnit) {
    switch (measure) {
    case Measure::Speed:
        if (speedUnit == u"M")
            return u"mph"_s;
        if (speedUnit == u"m")
            return u"m/s"_s;
        return speedUnit == u"k" ? u"kn"_s : u"km/h"_s;
    case Measure::Temperature:
    case Measure::TemperatureDifference:
        return temperatureUnit == u"F" ? u"°F"_s : u"°C"_s;
    case Measure::Percent:
        return u"%"_s;
    case Measure::Cycles:
    case Measure::Kelvin:
        break;
    }
    return {};
}

} // namespace skyhold
