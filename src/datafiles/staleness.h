// SPDX-License-Identifier: GPL-3.0-or-later
// Whether the weather station's file is there and its data fresh.
#pragma once

#include "model/observation.h"

namespace skyhold {

// Modification time of the station file, found without regard to the case of its name; invalid
// when there is no readable file (a folder is none).
QDateTime stationFileTime(const QString& path);

// A file time as the text that is kept and compared: UTC with milliseconds; empty when invalid.
QString fileTimeText(const QDateTime& time);

// The last file time before the first read of a session, older than any file's.
QString neverReadFileTime();

struct StationFileVerdict {
    StationFileState state = StationFileState::Missing;
    // Between the latest record and now, only when not rewritten; since the file was written,
    // where that alone is too long ago.
    double ageSeconds = 0;
};

// `modified` invalid: there is no file. A station date-time that was never set is too old.
// `sinceRewritten`: seconds since the file was last found rewritten. A station's clock may be wrong
// by an hour; the records of a station that stopped would come of age when the hour is over.
StationFileVerdict judgeStationFile(const QDateTime& modified, const QString& lastFileTime,
                                    const QDateTime& stationDateTime, const QDateTime& now,
                                    double timeoutMinutes, double sinceRewritten = 0);

} // namespace skyhold
