// SPDX-License-Identifier: GPL-3.0-or-later
// A whole monitor over simulated weather: its clock is moved, its sensor program and its weather
// station show the same sky, and its files stay in a folder of their own.
#pragma once

#include "core/monitoring_core.h"
#include "simulators/scenario.h"
#include "support/manual_clock.h"
#include "support/scripted_media.h"
#include "support/scripted_sensor.h"

#include <QTemporaryDir>

namespace skyhold {

// Its name is the same in every run, so that pictures that show it do not change; while another run
// has it, some other name.
class ShownFolder {
  public:
    ShownFolder();
    ~ShownFolder();
    ShownFolder(const ShownFolder&) = delete;
    ShownFolder& operator=(const ShownFolder&) = delete;

    QString path() const { return path_; }
    QString filePath(const QString& name) const { return path_ + u'/' + name; }

  private:
    QString path_;
    std::optional<QTemporaryDir> other_;
};

class SimulatedMonitor {
  public:
    // Set up for an observatory; no session runs yet.
    explicit SimulatedMonitor(const QDateTime& start);

    // Read cycles up to a time of the simulated night. The first one begins a session.
    void runUntil(QTime time);
    void cycle();
    // Begins a session; the sensor program has its first data only once `meanwhile` has been
    // called.
    void start(const std::function<void()>& meanwhile);
    // What fails from the next cycle on.
    bool sensorFails = false;
    bool stationStands = false; // its file is not written any more

    MonitoringCore& core() { return *core_; }
    Records& records() { return core_->records; }
    SettingsStore& settings() { return settings_; }
    CreateObject sensorProgram() { return sensor_.creator(); }

  private:
    void showWeather();
    void writeStation(const Weather& weather);

    ShownFolder folder_;
    ManualClock clock_;
    QDateTime start_;
    ScriptedSensor sensor_;
    ScriptedMedia media_;
    SettingsStore settings_;
    std::unique_ptr<MonitoringCore> core_;
};

} // namespace skyhold
