// SPDX-License-Identifier: GPL-3.0-or-later
#include "datafiles/staleness.h"

#include "platform/clock.h"
#include "platform/files.h"

#include <cmath>

namespace skyhold {

QDateTime stationFileTime(const QString& path) {
    const std::optional<QString> found = findFile(path);
    if (!found)
        return {};
    // What cannot be read is as good as missing: its time alone must not make it fresh.
    return isReadableFile(*found) ? modificationTime(*found) : QDateTime();
}

QString fileTimeText(const QDateTime& time) {
    return time.toUTC().toString(Qt::ISODateWithMs);
}

QString neverReadFileTime() {
    return fileTimeText(QDateTime(QDate(1899, 12, 31), QTime(0, 0, 1)));
}

StationFileVerdict judgeStationFile(const QDateTime& modified, const QString& lastFileTime,
                                    const QDateTime& stationDateTime, const QDateTime& now,
                                    double timeoutMinutes, double sinceRewritten) {
    if (!modified.isValid())
        return {StationFileState::Missing};
    if (lastFileTime == neverReadFileTime()) {
        // A file that was left behind long before the session began is not new data.
        const double age = static_cast<double>(modified.msecsTo(now)) / 1000;
        if (age / 60 > timeoutMinutes)
            return {StationFileState::Old, age};
    }
    if (fileTimeText(modified) != lastFileTime)
        return {StationFileState::Refreshed};

    const bool everSet = stationDateTime.isValid();
    const QDateTime record = everSet ? stationDateTime : fromDaySerial(0);
    const double age = std::abs(static_cast<double>(record.msecsTo(now))) / 1000;
    if (!everSet || !(age / 60 <= timeoutMinutes))
        return {StationFileState::Old, age};
    if (sinceRewritten / 60 > timeoutMinutes)
        return {StationFileState::Old, sinceRewritten};
    return {StationFileState::Unchanged, age};
}

} // namespace skyhold
