#include "records/alarm_controls.h"

namespace skyhold {

ThreeChecks& AlarmControls::alarms(Quantity quantity) {
    switch (quantity) {
    case Quantity::Cloud:
        return AlarmCloud;
    case Quantity::Rain:
        return AlarmRain;
    case Quantity::Brightness:
        return AlarmDay;
    case Quantity::Wind:
        return AlarmWind;
    case Quantity::Gust:
        return AlarmGust;
    case Quantity::Temperature:
        return AlarmTemp;
    case Quantity::Dew:
        return AlarmDew;
    case Quantity::Humidity:
        break;
    }
    return AlarmHum;
}

} // namespace skyhold
