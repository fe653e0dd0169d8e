#include "records/current_readings.h"

namespace skyhold {

std::int32_t CurrentReadings::level(Quantity quantity) const {
    switch (quantity) {
    case Quantity::Cloud:
        return CloudCondition;
    case Quantity::Rain:
        return RainCondition;
    case Quantity::Brightness:
        return BrightnessCondition;
    case Quantity::Wind:
        return WindCondition;
    case Quantity::Gust:
        return GustCondition;
    case Quantity::Temperature:
        return TemperatureCondition;
    case Quantity::Dew:
        return DewCondition;
    case Quantity::Humidity:
        return HumidityCondition;
    }
    return 0;
}

int SecondsSinceGoodData(const CurrentReadings& readings) {
    const bool failing =
        readings.StationFileMissing || readings.StationDataOld || readings.SensorError;
    return failing ? 1000 : 3;
}

} // namespace skyhold
