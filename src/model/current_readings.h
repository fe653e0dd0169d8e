// SPDX-License-Identifier: GPL-3.0-or-later
// The latest values of both sources, their times and what was derived from them. One read cycle
// overwrites it; a half-finished one is never visible.
#pragma once

#include "model/colours.h"
#include "model/conditions.h"
#include "model/quantity.h"
#include "model/units.h"

#include <QDateTime>
#include <QString>

#include <array>
#include <optional>

namespace skyhold {

// The places of `CurrentReadings::SensorValues`.
enum SensorValue : std::size_t {
    kSkyTemperature,
    kRainValue,
    kBrightnessValue,
    kSkySensorTemperature,
    kRainHeaterPercent, // 0..100
    kRainHeaterTemperature,
    kSensorValueCount
};

struct CurrentReadings {
    // Sensor program. Temperatures are in the unit that the sensor program was given.
    std::array<double, kSensorValueCount> SensorValues{};
    double SkySensorTemperature = 0;
    double AmbientTemperature = 0;
    QString RainHeaterStatus;
    QDateTime LastReading;
    double SwitchValue = 0; // 1 opened, 2 closed
    bool SensorDataReady = false;
    bool SensorError = false;

    // Weather station, display units (direction in degrees, humidity in percent). Nothing: never
    // read, or missing in a file that is valid otherwise.
    bool StationValid = false;
    std::optional<double> StationTemperature;
    std::optional<double> WindSpeed;
    std::optional<double> GustSpeed;
    std::optional<double> WindDirection;
    std::optional<double> DewPointValue;
    std::optional<double> HumidityValue;
    double BarometricPressure = 0;
    QDateTime StationDateTime;

    // Health of the station file.
    bool StationFileMissing = false;
    bool StationDataOld = false;

    // Levels, by the conditions' enumerations, and the verdict.
    PerQuantity<std::int32_t> Condition;
    bool UnsafeFlag = false;

    // Units in force.
    TemperatureCode TemperatureUnit = TemperatureCode::Celsius;
    SpeedCode SpeedUnit = SpeedCode::KilometresPerHour;

    QDateTime SessionStart;
    QDateTime ReadingStart;
    Colour ReadLedColour = kGreen; // what the read lamp shows after the cycle
    QString AlarmSoundId;          // id of the alarm that owns the sound, empty for none
};

// 3 while both sources are healthy, 1000 while any is not.
int SecondsSinceGoodData(const CurrentReadings& readings);

} // namespace skyhold
