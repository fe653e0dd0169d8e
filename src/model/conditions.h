// SPDX-License-Identifier: GPL-3.0-or-later
// Condition levels. The numbers are public: other programs read them. Level 0 is unknown.
#pragma once

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

} // namespace skyhold
