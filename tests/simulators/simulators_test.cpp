// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/clock_options.h"
#include "simulators/station_text.h"

#include <gtest/gtest.h>

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

TEST(ClockOptions, AreReadBesideTheProgramsOwnAndUnreadableOnesCountAsNotGiven) {
    const auto startFrom = [](const QString& options) {
        return clockStartFromArguments((u"program "_s + options).split(u' ', Qt::SkipEmptyParts));
    };
    const ClockStart start = startFrom(
        u"--file x.htm --time-from 2013-02-08T17:00:00 --headless --time-origin 1700000000000 "
        "--time-scale 120"_s);
    EXPECT_EQ(start.origin, QDateTime(QDate(2013, 2, 8), QTime(17, 0)));
    EXPECT_EQ(start.realOriginMs, 1'700'000'000'000);
    EXPECT_EQ(start.scale, 120);
    const ClockStart shared = startFrom(u"--time-origin 1700000000000"_s);
    EXPECT_EQ(shared.origin.toMSecsSinceEpoch(), 1'700'000'000'000);
    for (const QString& options :
         {u""_s, u"--time-scale 0"_s, u"--time-scale nan"_s, u"--time-scale fast"_s,
          u"--time-from 2013-02-30T00:00:00"_s, u"--time-origin 99999999999999999999"_s}) {
        EXPECT_FALSE(startFrom(options).origin.isValid()) << qPrintable(options);
        EXPECT_EQ(startFrom(options).scale, 1) << qPrintable(options);
    }
}

// Columns in another order than usual, one missing (gust_mph), one unknown.
TEST(ReplayLog, RecordInForceIsTheLastOneAndWhatItLacksIsEmpty) {
    const ReplayLog log = parseReplayLog(
        "time_utc,wind_mph,temperature_f,dew_point_f,humidity_pct,wind_direction_deg,"
        "precipitation_in,pressure_hpa,visibility_mi\r\n"
        "2026-11-06T20:00:00Z,10,32,23,46.41,360,0.10,1009.6,10\r\n"
        "2026-11-06T22:00:00Z,,-4,,,,,,\r\n"
        "not a time,1,2,3,4,5,6,7,8\r\n"
        "2026-11-06T21:00:00Z,1048.5,nan,abc,140,999,0.30,-5,10\r\n");
    ASSERT_EQ(log.error, QString());
    const auto cells = [&](int hour, const StationForm& form) {
        // The record's time is UTC, the simulated time is local.
        const QDateTime time =
            QDateTime(QDate(2026, 11, 6), QTime(hour, 59), Qt::UTC).toLocalTime();
        const StationCells all = cellsOf(log, time, form).value_or(StationCells());
        return QStringList{all.temperature, all.wind,     all.gust,     all.direction,
                           all.rainMax,     all.humidity, all.dewPoint, all.barometer}
            .join(u'|')
            .toStdString();
    };
    const StationForm form{.speedUnit = u'M', .temperatureUnit = u'F'};
    EXPECT_FALSE(cellsOf(log, QDateTime(QDate(2026, 11, 6), QTime(19, 0), Qt::UTC), form));
    EXPECT_EQ(cells(20, form), "32.0|10.0||N|2.5|46.4%|23.0|1009.6");
    EXPECT_EQ(cells(20, {}), "0.0|16.1||N|2.5|46.4%|-5.0|1009.6");
    EXPECT_EQ(cells(21, form), "nan|1048.5||999|10.2|140.0%|abc|-5.0");
    EXPECT_EQ(cells(23, form), "-4.0|||||||");
    for (const char* unreadable : {"", "time,wind_mph\n2026-11-06T20:00:00Z,1\n", "time_utc\n"})
        EXPECT_FALSE(parseReplayLog(unreadable).error.isEmpty()) << unreadable;
}

} // namespace
} // namespace skyhold
