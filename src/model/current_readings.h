// The latest values of both sources, their times and what was derived from them. One read cycle
// overwrites it; nobody sees a half-finished one.
#pragma once

#include "model/colours.h"
#include "model/quantity.h"

#include <QDateTime>
#include <QString>

#include <array>
#include <optional>

namespace skyhold {

struct CurrentReadings {
    // Sensor program. Temperatures in the unit the sensor program was told.
    std::int32_t CloudCondition = CloudUnknown;
    std::int32_t RainCondition = RainUnknown;
    std::int32_t BrightnessCondition = BrightnessUnknown;
    // [0] sky temperature, [1] rain value, [2] brightness value, [3] sky sensor temperature,
    // [4] rain heater percentage 0..100, [5] rain heater temperature
    std::array<double, 6> SensorValues{};
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
    std::optional<double> DewSpread; // temperature minus dew point, as it was judged
    double BarometricPressure = 0;
    QDateTime StationDateTime;
    QString LastFileTime; // modification time of the station file as text, at its last open
    std::int64_t StationRewritten = 0; // MsClock() when the file was last found rewritten

    // Health of the station file.
    bool StationFileMissing = false;
    bool StationDataOld = false;

    // Derived levels and the verdict.
    std::int32_t WindCondition = WindUnknown;
    std::int32_t GustCondition = WindUnknown;
    std::int32_t TemperatureCondition = TemperatureUnknown;
    std::int32_t DewCondition = DewUnknown;
    std::int32_t HumidityCondition = HumidityUnknown;
    bool UnsafeFlag = false;

    // Units in force: temperature "C", "F" or " "; speed "K" km/h, "M" mph, "m" m/s, "k" knots.
    QString TemperatureUnit = QStringLiteral("C");
    QString SpeedUnit = QStringLiteral("K");

    QDateTime SessionStart;
    QDateTime ReadingStart;
    Colour ReadLedColour = kGreen; // what the read lamp shows after the cycle
    QString AlarmSoundId;          // id of the alarm that owns the sound, empty for none

    std::int32_t level(Quantity quantity) const;
    // What the level of a station quantity was judged by; nothing for the others.
    std::optional<double> judgedValue(Quantity quantity) const;
};

// 3 while both sources are healthy, 1000 while any is not.
int SecondsSinceGoodData(const CurrentReadings& readings);

} // namespace skyhold
