// SPDX-License-Identifier: GPL-3.0-or-later
// The simulated cloud sensor: what it measures, what state it is in, and what has been sent to it.
#pragma once

#include "platform/clock.h"
#include "sensorhost/sensor_source.h"
#include "simulators/faults.h"
#include "simulators/scenario.h"

#include <QString>

#include <functional>
#include <optional>

namespace skyhold {

struct SensorOptions {
    Scenario scenario = Scenario::Night;
    QDateTime scenarioStart;
    QString version = QStringLiteral("5.20.0001");
    QString role = QStringLiteral("MASTER");
    double readyAfter = 2; // seconds from the start of the device to its first data
};

class SensorDevice : public SensorSource {
  public:
    // `onChange` is given a line for every change that is sent to the device.
    SensorDevice(const Clock& clock, const SensorOptions& options, const Faults& faults,
                 std::function<void(const QString&)> onChange);

    QString version() const override;
    QString role() const override;

    void start() override;
    bool running() const override;
    bool dataReady() const override;
    bool transferFailed() const override;

    // The latest reading; everything 0 while there is none.
    SensorReading reading() const override;
    SensorLimits limits() const override;
    std::vector<SensorReading> history() const override;
    int readCycle() const override;
    int graphFrequency() const override;

    void temperatureUnitChosen(const QString& letter) override;
    void setSwitchControl(bool byClient) override;
    bool switchControl() const override { return switchControl_; }
    void setSwitch(RoofState wanted) override;
    RoofState switchStatus() const override { return switchStatus_; }
    void setUnsafe(bool unsafe) override;
    void setLocalControl(bool claimed, const QString& label) override;
    void stopAlarm() override;

  private:
    double secondsSinceStart() const;
    QDateTime firstReading() const;
    QDateTime lastReading() const;
    SensorReading readingAt(const QDateTime& time) const;

    const Clock& clock_;
    SensorOptions options_;
    const Faults& faults_;
    std::function<void(const QString&)> onChange_;
    QDateTime started_;
    bool switchControl_ = false;
    RoofState switchStatus_ = RoofState::Closed;
    std::optional<bool> unsafe_; // nothing before the first verdict
};

} // namespace skyhold
