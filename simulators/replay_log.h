// SPDX-License-Identifier: GPL-3.0-or-later
// A log of weather observations that a simulated station plays again.
#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <vector>

namespace skyhold {

// One observation as it stands in the log; a value that was not reported is empty.
struct LogRecord {
    QDateTime time;
    QString temperatureF;
    QString dewPointF;
    QString humidity;
    QString direction; // degrees
    QString windMph;
    QString gustMph;
    QString precipitationIn; // since the record before
    QString pressure;        // hPa
};

struct ReplayLog {
    std::vector<LogRecord> records; // by time
    QString error;                  // empty when the log could be read

    // The last record not later than `time`; nothing before the first.
    const LogRecord* inForce(const QDateTime& time) const;
    // Inches that fell on the local day of `time`, up to then.
    double rainOfDay(const QDateTime& time) const;
};

// Comma-separated text. The header names the columns, in any order; "time_utc" must be there. A
// line whose time cannot be read is left out.
ReplayLog parseReplayLog(const QByteArray& text);

} // namespace skyhold
