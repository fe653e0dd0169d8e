// SPDX-License-Identifier: GPL-3.0-or-later
// All that runs together in the sensor program, by its settings.
#pragma once

#include "sensors/sensor_device.h"
#include "sensors/station_output.h"

namespace skyhold {

class IndiSource;

class SensorProgram {
  public:
    explicit SensorProgram(const SensorSettings& settings);
    ~SensorProgram();

    void start();
    // A roof that was opened for the monitor is closed; serves events until that is sent.
    void end();

    // After each read cycle.
    std::function<void()> cycleDone = [] {
    };

    SensorSource& sensor() { return sensor_; }
    const Measurements& measurements() const { return measurements_; }
    // A line for each source: what is wrong with it, or that it works.
    QStringList sourceLines();
    // "rain                0.2        wet... ": a line for each item that is set.
    QStringList itemLines() const;
    QString switchLine() const; // empty without a switch

    // Keeps a station file up to date.
    void writeStation(const QString& path);

  private:
    struct Source {
        QString name;
        std::unique_ptr<ValueSource> source;
    };

    const SensorSettings& settings_;
    Measurements measurements_;
    std::vector<Source> sources_;
    std::unique_ptr<SwitchDriver> driver_;
    std::unique_ptr<RoofSwitch> roof_;
    MeasuredSensor sensor_;
    std::unique_ptr<StationOutput> station_;
    QTimer tick_, keep_;
};

} // namespace skyhold
