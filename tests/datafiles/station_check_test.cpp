// SPDX-License-Identifier: GPL-3.0-or-later
#include "datafiles/station_check.h"

#include "platform/settings_store.h"
#include "records/records.h"
#include "settings/load_save.h"
#include "support/test_folder.h"

#include <gtest/gtest.h>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

const QByteArray kWhole =
    "Date,,05/11/2026\r\nTime,,22:00:00\r\nOutTemp,C,12.5\r\n"
    "WindSpeed,m/s,3\r\nGust,m/s,4\r\nWindDirection,,SW\r\nRainDayMin,mm,0\r\n"
    "RainDayMax,mm,1.5\r\nOutHumidity,%,80%\r\nDewPoint,C,9\r\n"
    "Barometer,hPa,1013\r\n";

} // namespace

TEST(CheckStation, SaysWhatTheReaderSees) {
    const SettingsFolder settings;
    Records records;
    LoadSettings(records, SettingsStore(u"Kiv_Skyhold"_s), {});
    const auto with = [](const char* from, const char* to) {
        return QByteArray(kWhole).replace(from, to);
    };
    struct Case {
        QByteArray text;
        int minutesLater;
        int status;
        const char* says; // after blanks are made single
        const char* brief = "";
    };
    const Case cases[] = {
        {kWhole, 0, 0, "WindSpeed 3 3 m/s, judged",
         "CSV, 11 entries, written 0 s ago\n"
         "Date 05/11/2026: 2026-11-05, day first; the other order would be nearer to today\n"
         "Read: WindSpeed 3 m/s, Gust 4 m/s"},
        {kWhole, 0, 0, "Date 05/11/2026 2026-11-05, day first; the other order would be nearer"},
        {kWhole, 0, 0, "rain of the day 1.5"},
        {kWhole, 10, 1, "File: 10 min 0 s old, limit 3 min 0 s: TOO OLD",
         "Too old: more than 3 min 0 s"},
        {with("12.5", "N/A"), 0, 1, "OutTemp N/A MISSING", "Missing, not a number: OutTemp"},
        {with(",3\r", ",\r"), 0, 1, "WindSpeed (empty) MISSING"},
        {with("12.5", "\"12,5\""), 0, 1, "OutTemp 12,5 MISSING"},
        {with("SW", "225"), 0, 0, "WindDirection 225 not a compass label"},
        {with("Gust,m/s,4\r\n", ""), 0, 0, "Gust no such name read as 0"},
        {with("Gust,m/s,4\r\n", ""), 0, 0, "counts from a session's second read"},
        {with("22:00:00", "?"), 0, 0, "Time ? not a time of day"},
        {with("m/s", "furlongs"), 0, 0, "unit of WindSpeed furlongs"},
        {"Hello\r\n", 0, 2, "no readings in file"},
        {QByteArray("OutTemp\0C", 9), 0, 2, "not a text file"},
    };
    const TestFolder folder;
    for (const Case& row : cases) {
        const QString path = folder.write(u"station.csv"_s, row.text);
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        const QDateTime then(QDate(2026, 5, 11), QTime(22, 0));
        ASSERT_TRUE(file.setFileTime(then, QFileDevice::FileModificationTime));
        const StationCheck check =
            checkStationFile(path, records.units, 3, {}, then.addSecs(60LL * row.minutesLater));
        EXPECT_EQ(check.status, row.status) << row.says;
        QStringList lines;
        for (const QString& line : check.lines)
            lines.append(line.simplified());
        EXPECT_TRUE(lines.join(u'\n').contains(QLatin1String(row.says)))
            << row.says << '\n'
            << lines.join(u'\n').toStdString();
        EXPECT_TRUE(check.brief.join(u'\n').contains(QLatin1String(row.brief)))
            << check.brief.join(u'\n').toStdString();
    }
    EXPECT_EQ(checkStationFile(folder.filePath(u"gone.htm"_s), records.units, 3, {}, {}).status, 2);
}

} // namespace skyhold
