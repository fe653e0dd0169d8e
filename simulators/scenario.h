// SPDX-License-Identifier: GPL-3.0-or-later
// The simulated weather: a pure function of the simulated time, so that a sensor program and a
// weather station that share a clock show the same sky.
#pragma once

#include <QDateTime>
#include <QString>

#include <array>
#include <cstdint>
#include <optional>

namespace skyhold {

// Night: a whole day by the local time of day. Clear after dusk, clouds from 21:30, a shower after
// midnight, dew at 3, gusts at 4:45, dawn from 5:30. Quick: 20 minutes that begin in a shower; dry,
// calm, clear and dark from the first minute to the tenth, then dawn.
enum class Scenario { Night, Quick };

// "night" or "quick".
std::optional<Scenario> scenarioNamed(const QString& name);

struct Weather {
    double temperature = 0;               // of the air, °C
    double dewPoint = 0;                  // °C
    double humidity = 0;                  // %
    double wind = 0;                      // km/h
    double gust = 0;                      // km/h
    double direction = 0;                 // degrees, 0..360
    double pressure = 0;                  // hPa
    double rainToday = 0;                 // mm
    double skyTemperature = 0;            // °C
    double rainValue = 0;                 // sensor cycles; they fall with wetness
    double brightnessValue = 0;           // kilo-ohms; they fall with light
    std::int32_t cloudCondition = 0;      // 1 clear, 2 cloudy, 3 overcast
    std::int32_t rainCondition = 0;       // 1 dry, 2 wet, 3 rain
    std::int32_t brightnessCondition = 0; // 1 dark, 2 light, 3 very light
    double heaterPercent = 0;             // of the rain sensor, 0..100
    double heaterTemperature = 0;         // °C
    double sensorTemperature = 0;         // of the sky sensor itself, °C
};

// The sensor's limits between conditions 1, 2, 3 and unknown: sky temperatures up to each cloud
// limit, rain and brightness values above each limit.
inline constexpr std::array kCloudLimits{-13.0, -5.0, 50.0};
inline constexpr std::array kRainLimits{2200.0, 1700.0, 100.0};
inline constexpr std::array kBrightnessLimits{2000.0, 6.0, 0.0};

// `start` is where the quick night begins; before it, its first moment lasts. After its end it
// begins again. The other scenario does not need it.
Weather weatherAt(Scenario scenario, const QDateTime& start, const QDateTime& time);

// From °C to the unit of the letter "C" or "F"; from km/h to that of "K", "M", "m" or "k".
double temperatureIn(QChar unit, double celsius);
double speedIn(QChar unit, double kmPerHour);

} // namespace skyhold
