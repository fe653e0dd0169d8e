// SPDX-License-Identifier: GPL-3.0-or-later
// The weather station's file, written from the sources of the sensor program.
#pragma once

#include "sensors/measurements.h"

#include <QDateTime>
#include <QTimer>

#include <deque>

namespace skyhold {

// A file that Kiv_Skyhold reads: HTML, or CSV where the name ends in ".csv". Written anew within a
// second of every new value, never without one: a file that nobody feeds gets old. An instrument
// that the settings do not name is left out; one that has no current value has an empty cell,
// which its reader takes for missing.
class StationOutput {
  public:
    StationOutput(const QString& path, const SensorSettings& settings,
                  const Measurements& measurements);

    // A value has come.
    void changed();

    QByteArray text(const QDateTime& time);
    static constexpr double kGustMinutes = 10;

  private:
    void write();
    std::optional<double> gust();

    QString path_;
    const SensorSettings& settings_;
    const Measurements& measurements_;
    QTimer soon_;
    // Wind of the last ten minutes, from which a gust is found where nothing measures it.
    std::deque<std::pair<std::int64_t, double>> winds_;
    bool failed_ = false;
};

// The dew point in °C by the Magnus formula; nothing for a humidity of 0.
std::optional<double> dewPointOf(double celsius, double humidityPercent);

} // namespace skyhold
