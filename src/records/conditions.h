// Condition levels. The numbers are public: other programs read them. Level 0 is unknown.
#pragma once

#include <array>
#include <cstdint>

namespace skyhold {

enum CloudCond : std::int32_t { CloudUnknown, CloudClear, CloudCloudy, CloudVeryCloudy };
enum BrightnessCond : std::int32_t {
    BrightnessUnknown,
    BrightnessDark,
    BrightnessLight,
    BrightnessVerylight
};
enum RainCond : std::int32_t { RainUnknown, RainDry, RainWet, RainRain };
enum WindCond : std::int32_t { WindUnknown, WindCalm, WindWindy, WindVeryWindy };
enum SkyCond : std::int32_t { SkyUnknown, SkyClear, SkyCloudy, SkyVeryCloudy, SkyWet };
enum TemperatureCond : std::int32_t {
    TemperatureUnknown,
    TemperatureLow,
    TemperatureMedium,
    TemperatureHigh
};
enum DewCond : std::int32_t { DewUnknown, DewLow, DewMedium, DewHigh };
enum HumidityCond : std::int32_t { HumidityUnknown, HumidityLow, HumidityMedium, HumidityHigh };

// The eight judged quantities; the first three are classified by the sensor program.
enum class Quantity { Cloud, Rain, Brightness, Wind, Gust, Temperature, Dew, Humidity };

inline constexpr std::array kAllQuantities{
    Quantity::Cloud, Quantity::Rain,        Quantity::Brightness, Quantity::Wind,
    Quantity::Gust,  Quantity::Temperature, Quantity::Dew,        Quantity::Humidity};
inline constexpr std::array kStationQuantities{
    Quantity::Wind, Quantity::Gust, Quantity::Temperature, Quantity::Dew, Quantity::Humidity};

} // namespace skyhold
