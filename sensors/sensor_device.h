// SPDX-License-Identifier: GPL-3.0-or-later
// The sensor program's device: what the sources measure, as the monitor reads it.
#pragma once

#include "sensorhost/sensor_source.h"
#include "sensors/measurements.h"
#include "sensors/roof_switch.h"

#include <deque>

namespace skyhold {

class MeasuredSensor : public SensorSource {
  public:
    // `roof` is null where there is no switch.
    MeasuredSensor(const SensorSettings& settings, const Measurements& measurements,
                   RoofSwitch* roof, std::function<void(const QString&)> log);

    QString version() const override;
    QString role() const override;
    void start() override {}
    bool running() const override { return true; }
    // Every value and level that the settings map is there and fresh.
    bool dataReady() const override;
    bool transferFailed() const override { return !dataReady(); }
    SensorReading reading() const override;
    SensorLimits limits() const override;
    std::vector<SensorReading> history() const override;
    int readCycle() const override;
    int graphFrequency() const override;

    void temperatureUnitChosen(const QString&) override {}
    void setSwitchControl(bool byClient) override { switchControl_ = byClient; }
    bool switchControl() const override { return switchControl_; }
    void setSwitch(RoofState wanted) override;
    RoofState switchStatus() const override;
    void setUnsafe(bool unsafe) override;
    void setLocalControl(bool claimed, const QString& label) override;
    void stopAlarm() override {}

    // To be called every readCycle() seconds: keeps a point of the graphs now and then.
    void keepHistory();

  private:
    const SensorSettings& settings_;
    const Measurements& measurements_;
    RoofSwitch* roof_;
    std::function<void(const QString&)> log_;
    bool switchControl_ = false;
    bool unsafe_ = true; // until the monitor has said otherwise
    std::deque<SensorReading> history_;
    int sinceKept_ = 0;
};

} // namespace skyhold
