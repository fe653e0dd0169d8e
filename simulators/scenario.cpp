// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulators/scenario.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <span>

namespace skyhold {

namespace {

// The sky at one moment; between two moments every value glides.
struct Keyframe {
    double minute;
    double temperature; // °C
    double spread;      // temperature minus dew point, °C
    double cloud;       // 0 clear .. 1 overcast
    double wetness;     // of the rain sensor, 0 dry .. 1 rain
    double daylight;    // 0 dark .. 1 very light
    double wind;        // km/h
    double gustRatio;   // gust speed over wind speed
    double direction;   // degrees
};

struct Course {
    std::span<const Keyframe> frames; // the first at minute 0
    double minutes;                   // until it repeats
    double rainFrom, rainUntil;       // minutes
    double rainMm;
};

// clang-format off
constexpr std::array kNightFrames{
    //        minute  temp spread cloud  wet  light wind  gust  dir
    Keyframe{    0,   9.0,  5.0, 1.00, 0.00, 0.0,  7.0, 1.3, 225},
    Keyframe{   30,   8.8,  4.5, 1.00, 0.00, 0.0,  7.0, 1.3, 225},
    Keyframe{   45,   8.5,  4.0, 1.00, 1.00, 0.0,  8.0, 1.2, 230},
    Keyframe{   75,   8.0,  4.0, 1.00, 1.00, 0.0,  8.0, 1.2, 235},
    Keyframe{  105,   7.8,  4.2, 1.00, 0.00, 0.0,  6.0, 1.3, 240},
    Keyframe{  120,   7.5,  4.5, 0.65, 0.00, 0.0,  5.0, 1.3, 245},
    Keyframe{  150,   6.5,  4.5, 0.05, 0.00, 0.0,  3.0, 1.4, 250},
    Keyframe{  180,   5.5,  1.5, 0.00, 0.00, 0.0,  2.0, 1.4, 255},
    Keyframe{  240,   5.0,  1.5, 0.00, 0.00, 0.0,  3.0, 1.4, 265},
    Keyframe{  270,   5.5,  6.0, 0.05, 0.00, 0.0,  8.0, 1.2, 280},
    Keyframe{  285,   5.8,  7.0, 0.05, 0.00, 0.0, 14.0, 1.9, 290},
    Keyframe{  315,   5.8,  7.0, 0.05, 0.00, 0.0, 14.0, 1.9, 295},
    Keyframe{  330,   5.6,  7.0, 0.00, 0.00, 0.0,  7.0, 1.3, 295},
    Keyframe{  390,   6.0,  6.5, 0.00, 0.00, 0.5,  6.0, 1.3, 290},
    Keyframe{  435,   8.0,  7.0, 0.00, 0.00, 1.0,  6.0, 1.3, 280},
    Keyframe{  720,  16.0, 10.0, 0.10, 0.00, 1.0,  8.0, 1.2, 250},
    Keyframe{ 1080,  14.0,  9.0, 0.10, 0.00, 1.0,  7.0, 1.3, 225},
    Keyframe{ 1110,  13.0,  8.5, 0.05, 0.00, 0.5,  6.0, 1.3, 225},
    Keyframe{ 1170,  12.0,  8.0, 0.00, 0.00, 0.0,  5.0, 1.3, 225},
    Keyframe{ 1290,  10.5,  7.0, 0.00, 0.00, 0.0,  5.0, 1.3, 225},
    Keyframe{ 1320,  10.0,  6.5, 0.65, 0.00, 0.0,  6.0, 1.3, 225},
    Keyframe{ 1365,   9.8,  6.0, 0.65, 0.00, 0.0,  6.0, 1.3, 225},
    Keyframe{ 1380,   9.5,  6.0, 1.00, 0.00, 0.0,  7.0, 1.3, 225},
};
constexpr std::array kQuickFrames{
    //        minute  temp spread cloud  wet  light wind  gust  dir
    Keyframe{  0.0,  12.0,  8.0, 0.00, 1.00, 0.0,  5.0, 1.4, 225},
    Keyframe{  0.5,  12.0,  8.0, 0.00, 1.00, 0.0,  5.0, 1.4, 225},
    Keyframe{  0.8,  12.0,  8.0, 0.00, 0.00, 0.0,  5.0, 1.4, 225},
    Keyframe{ 10.0,  11.0,  8.0, 0.00, 0.00, 0.0,  5.0, 1.4, 235},
    Keyframe{ 12.0,  11.5,  8.0, 0.00, 0.00, 0.5,  5.0, 1.4, 235},
    Keyframe{ 14.0,  12.0,  8.0, 0.00, 0.00, 1.0,  5.0, 1.4, 235},
    Keyframe{ 18.0,  13.0,  8.0, 0.00, 0.00, 1.0,  5.0, 1.4, 230},
    Keyframe{ 19.5,  12.5,  8.0, 0.00, 0.00, 0.0,  5.0, 1.4, 225},
};
// clang-format on

constexpr Course kNight{kNightFrames, 24 * 60, 35, 85, 4.6};
constexpr Course kQuick{kQuickFrames, 20, 0, 0.7, 0.4};

double glide(double position) {
    const double x = std::clamp(position, 0.0, 1.0);
    return x * x * (3 - 2 * x);
}

Keyframe frameAt(const Course& course, double minute) {
    const auto after = std::upper_bound(
        course.frames.begin(), course.frames.end(), minute,
        [](double wanted, const Keyframe& frame) { return wanted < frame.minute; });
    const Keyframe& from = *std::prev(after);
    const bool last = after == course.frames.end();
    const Keyframe& to = last ? course.frames.front() : *after;
    const double end = last ? course.minutes : to.minute;
    const double part = glide((minute - from.minute) / (end - from.minute));
    const auto mix = [&](double Keyframe::*value) {
        return std::lerp(from.*value, to.*value, part);
    };
    return {minute,
            mix(&Keyframe::temperature),
            mix(&Keyframe::spread),
            mix(&Keyframe::cloud),
            mix(&Keyframe::wetness),
            mix(&Keyframe::daylight),
            mix(&Keyframe::wind),
            mix(&Keyframe::gustRatio),
            mix(&Keyframe::direction)};
}

// A small liveliness, the same in every run; from -1 to 1.
double ripple(double minute, double periodMinutes) {
    return std::sin(2 * std::numbers::pi * minute / periodMinutes);
}

// Pressure of saturated vapour, hPa.
double vapourPressure(double celsius) {
    return 6.112 * std::exp(17.625 * celsius / (243.04 + celsius));
}

std::int32_t levelUpTo(const std::array<double, 3>& limits, double value) {
    for (std::int32_t i = 0; i < 3; ++i) {
        if (value <= limits[static_cast<std::size_t>(i)])
            return i + 1;
    }
    return 0;
}

std::int32_t levelAbove(const std::array<double, 3>& limits, double value) {
    for (std::int32_t i = 0; i < 3; ++i) {
        if (value > limits[static_cast<std::size_t>(i)])
            return i + 1;
    }
    return 0;
}

Weather weatherAt(const Course& course, double minute) {
    const Keyframe frame = frameAt(course, minute);
    Weather weather;
    weather.temperature = frame.temperature + 0.15 * ripple(minute, 4);
    weather.dewPoint = weather.temperature - frame.spread;
    weather.humidity = 100 * vapourPressure(weather.dewPoint) / vapourPressure(weather.temperature);
    weather.wind = frame.wind * (1 + 0.08 * ripple(minute, 2.5));
    weather.gust = frame.wind * frame.gustRatio * (1 + 0.04 * ripple(minute, 2));
    weather.direction = std::fmod(frame.direction + 6 * ripple(minute, 5) + 360, 360);
    weather.pressure = 1014 + 3 * ripple(minute, course.minutes);
    weather.rainToday =
        course.rainMm * glide((minute - course.rainFrom) / (course.rainUntil - course.rainFrom));

    weather.skyTemperature = std::lerp(-26.0, 0.0, frame.cloud) + 0.3 * (weather.temperature - 10) +
                             0.3 * ripple(minute, 10);
    weather.rainValue = std::lerp(2600.0, 700.0, frame.wetness) + 15 * ripple(minute, 4);
    weather.brightnessValue = 12'000 * std::pow(12'000, -frame.daylight);
    weather.cloudCondition = levelUpTo(kCloudLimits, weather.skyTemperature);
    weather.rainCondition = levelAbove(kRainLimits, weather.rainValue);
    weather.brightnessCondition = levelAbove(kBrightnessLimits, weather.brightnessValue);
    weather.heaterPercent = 5 + 75 * frame.wetness;
    weather.heaterTemperature = weather.temperature + 3 + 0.25 * weather.heaterPercent;
    weather.sensorTemperature = weather.temperature + 1.2;
    return weather;
}

} // namespace

std::optional<Scenario> scenarioNamed(const QString& name) {
    if (name == QStringLiteral("night"))
        return Scenario::Night;
    if (name == QStringLiteral("quick"))
        return Scenario::Quick;
    return std::nullopt;
}

Weather weatherAt(Scenario scenario, const QDateTime& start, const QDateTime& time) {
    if (scenario == Scenario::Night)
        return weatherAt(kNight, time.time().msecsSinceStartOfDay() / 60'000.0);
    const auto ms = static_cast<double>(std::max<qint64>(start.msecsTo(time), 0));
    return weatherAt(kQuick, std::fmod(ms / 60'000, kQuick.minutes));
}

double temperatureIn(QChar unit, double celsius) {
    return unit == u'F' ? celsius * 9 / 5 + 32 : celsius;
}

double speedIn(QChar unit, double kmPerHour) {
    switch (unit.unicode()) {
    case u'M':
        return kmPerHour / 1.609344;
    case u'm':
        return kmPerHour / 3.6;
    case u'k':
        return kmPerHour / 1.852;
    default:
        return kmPerHour;
    }
}

} // namespace skyhold
