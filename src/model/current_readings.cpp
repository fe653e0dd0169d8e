#include "model/current_readings.h"

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

std::optional<double> CurrentReadings::judgedValue(Quantity quantity) const {
    switch (quantity) {
    case Quantity::Wind:
        return WindSpeed;
    case Quantity::Gust:
        return GustSpeed;
    case Quantity::Temperature:
        return StationTemperature;
    case Quantity::Dew:
        return DewSpread;
    case Quantity::Humidity:
        return HumidityValue;
    default:
        return std::nullopt;
    }
}

int SecondsSinceGoodData(const CurrentReadings& readings) {
    const bool failing =
        readings.StationFileMissing || readings.StationDataOld || readings.SensorError;
    return failing ? 1000 : 3;
}

} // namespace skyhold
