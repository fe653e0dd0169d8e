// SPDX-License-Identifier: GPL-3.0-or-later
// What stands behind the sensor program's members: a device, or what plays one.
#pragma once

#include <QDateTime>
#include <QString>

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace skyhold {

// One reading. Temperatures are in °C. A value that is nothing was not measured, or too long ago;
// what is not measured at all is 0.
struct SensorReading {
    QDateTime time;                                      // local; invalid before the first reading
    std::optional<std::int32_t> cloudCondition = 0;      // 1 clear, 2 cloudy, 3 overcast, 0 unknown
    std::optional<std::int32_t> rainCondition = 0;       // 1 dry, 2 wet, 3 rain
    std::optional<std::int32_t> brightnessCondition = 0; // 1 dark, 2 light, 3 very light
    std::optional<double> skyTemperature = 0;
    std::optional<double> rainValue = 0;
    std::optional<double> brightnessValue = 0;
    std::optional<double> sensorTemperature = 0; // of the sky sensor itself
    std::optional<double> temperature = 0;       // of the air
    std::optional<double> heaterPercent = 0;     // of the rain sensor, 0..100
    std::optional<double> heaterTemperature = 0;
    QString heaterStatus;
};

// What other programs read as the device's limits; a device decides its levels by its own.
struct SensorLimits {
    std::array<double, 3> cloud{};      // the highest sky temperature of levels 1, 2 and 3
    std::array<double, 3> rain{};       // the lowest value
    std::array<double, 3> brightness{}; // the lowest value
};

// The switch as other programs set and read it.
enum class RoofState { Unknown = 0, Opened = 1, Closed = 2 };

class SensorSource {
  public:
    virtual ~SensorSource() = default;

    // "5.20.0001"; the last four characters are the build.
    virtual QString version() const = 0;
    virtual QString role() const = 0; // "MASTER" drives the switch

    virtual void start() = 0; // without effect when it runs already
    virtual bool running() const = 0;
    virtual bool dataReady() const = 0;
    virtual bool transferFailed() const = 0;
    virtual SensorReading reading() const = 0;
    virtual SensorLimits limits() const = 0;

    // A point for each graph, oldest first.
    virtual std::vector<SensorReading> history() const = 0;
    virtual int readCycle() const = 0;      // seconds between readings
    virtual int graphFrequency() const = 0; // readings for each point

    // What other programs send to it.
    virtual void temperatureUnitChosen(const QString& letter) = 0; // another than before
    virtual void setSwitchControl(bool byClient) = 0;
    virtual bool switchControl() const = 0;
    virtual void setSwitch(RoofState wanted) = 0; // Opened or Closed
    virtual RoofState switchStatus() const = 0;
    virtual void setUnsafe(bool unsafe) = 0;
    virtual void setLocalControl(bool claimed, const QString& label) = 0;
    virtual void stopAlarm() = 0;
};

} // namespace skyhold
