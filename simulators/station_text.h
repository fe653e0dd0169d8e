// SPDX-License-Identifier: GPL-3.0-or-later
// The file that a weather-station program keeps up to date: one row of name, unit and value for
// each quantity, as a page with a table or as comma-separated text.
#pragma once

#include "simulators/replay_log.h"
#include "simulators/scenario.h"

#include <QByteArray>
#include <QChar>

namespace skyhold {

struct StationForm {
    bool csv = false;             // else HTML
    QChar speedUnit = u'K';       // "K" km/h, "M" mph, "m" m/s, "k" knots
    QChar temperatureUnit = u'C'; // or "F"
    bool monthFirst = false;      // in dates
};

// The value cells, numbers in the units of the form.
struct StationCells {
    QString temperature;
    QString wind;
    QString gust;
    QString direction; // compass label
    QString rainMin;   // rain counter at the beginning of the day, mm
    QString rainMax;   // rain counter now, mm
    QString humidity;
    QString dewPoint;
    QString barometer; // hPa
};

StationCells cellsOf(const Weather& weather, const StationForm& form);
// Of the record in force at `time`. A value that was not reported is an empty cell; one that cannot
// be is written as it stands. Nothing before the first record.
std::optional<StationCells> cellsOf(const ReplayLog& log, const QDateTime& time,
                                    const StationForm& form);

// The whole file, written at `time`.
QByteArray stationText(const StationCells& cells, const QDateTime& time, const StationForm& form);

} // namespace skyhold
