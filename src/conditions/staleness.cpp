#include "conditions/staleness.h"

#include "platform/files.h"
#include "platform/text_forms.h"
#include "records/status_lines.h"

#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

QDateTime stationFileTime(const QString& path) {
    const std::optional<QString> found = findFile(path);
    if (!found)
        return {};
    // What cannot be read is as good as missing: it must not count as fresh for its time alone.
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
        // A file that was left behind long before the session began is no news.
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

bool CheckStationStaleness(const StationFileControls& file, CurrentReadings& readings,
                           ReadingDisplay& display, SessionControls& session, const Clock& clock,
                           const std::function<void(StationFileState)>& soundAlarm) {
    const std::int64_t nowMs = clock.MsClock();
    const StationFileVerdict verdict =
        judgeStationFile(stationFileTime(file.HTMFile.Caption), readings.LastFileTime,
                         readings.StationDateTime, clock.now(), file.TimeoutREAD.Value,
                         static_cast<double>(nowMs - readings.StationRewritten) / 1000);
    if (verdict.state == StationFileState::Refreshed)
        readings.StationRewritten = nowMs;
    const QString age = formatNumber(verdict.ageSeconds, u"0", {}) + u"s old"_s;
    readings.StationFileMissing = verdict.state == StationFileState::Missing;
    readings.StationDataOld = readings.StationFileMissing || verdict.state == StationFileState::Old;
    readings.ReadLedColour = readings.StationDataOld ? kYellow : kGreen;

    const auto tell = [&](const QString& status, Colour colour, const QString& alarm,
                          const QString& code) {
        SetStatusText(session.Statusbar1, status, colour);
        display.WSAlarmMsg.Caption = alarm;
        soundAlarm(verdict.state);
        SetErrorCodes(session.Statusbar2, code, kRed);
    };
    switch (verdict.state) {
    case StationFileState::Missing:
        tell(u"Weather Station Data - file not available"_s, kRed, u"WS data file absent"_s,
             u"a42"_s);
        break;
    case StationFileState::Old:
        tell(u"Weather Station Data too old - "_s + age, kRed, u"WS data too old"_s, u"a41"_s);
        break;
    case StationFileState::Unchanged:
        tell(u"Weather Station Data - "_s + age, kNavy, QString(), QString());
        break;
    case StationFileState::Refreshed:
        tell(u"Weather Station Data - Refreshed"_s, kNavy, QString(), QString());
        break;
    }
    return !readings.StationDataOld;
}

} // namespace skyhold
