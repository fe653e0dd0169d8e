#include "simulators/station_text.h"

#include <gtest/gtest.h>

#include <ostream>

namespace skyhold {
namespace {

const QDateTime kTime(QDate(2026, 11, 6), QTime(22, 5, 9));

Weather weather() {
    Weather weather;
    weather.temperature = 12;
    weather.dewPoint = -1.5;
    weather.humidity = 57.6;
    weather.wind = 18;
    weather.gust = 36;
    weather.direction = 349;
    weather.pressure = 1012.54;
    weather.rainToday = 1.23;
    return weather;
}

std::string text(const StationForm& form) {
    return stationText(cellsOf(weather(), form), kTime, form).toStdString();
}

TEST(StationText, CsvHasEveryQuantityInTheUnitsOfTheForm) {
    EXPECT_EQ(text({.csv = true}), "Date,,06/11/2026\r\n"
                                   "Time,,22:05:09\r\n"
                                   "OutTemp,C,12.0\r\n"
                                   "WindSpeed,km/h,18.0\r\n"
                                   "Gust,km/h,36.0\r\n"
                                   "WindDirection,,N\r\n"
                                   "RainDayMin,mm,0.0\r\n"
                                   "RainDayMax,mm,1.2\r\n"
                                   "OutHumidity,%,58%\r\n"
                                   "DewPoint,C,-1.5\r\n"
                                   "Barometer,hPa,1012.5\r\n");
    struct Case {
        StationForm form;
        std::string row;
    };
    const Case cases[] = {
        {{.csv = true, .monthFirst = true}, "Date,,11/06/2026\r\n"},
        {{.csv = true, .temperatureUnit = u'F'}, "OutTemp,F,53.6\r\n"},
        {{.csv = true, .temperatureUnit = u'F'}, "DewPoint,F,29.3\r\n"},
        {{.csv = true, .speedUnit = u'M'}, "WindSpeed,mph,11.2\r\nGust,mph,22.4\r\n"},
        {{.csv = true, .speedUnit = u'm'}, "WindSpeed,m/s,5.0\r\nGust,m/s,10.0\r\n"},
        {{.csv = true, .speedUnit = u'k'}, "WindSpeed,kts,9.7\r\nGust,kts,19.4\r\n"},
    };
    for (const Case& each : cases)
        EXPECT_NE(text(each.form).find(each.row), std::string::npos) << each.row;
}

TEST(StationText, HtmlIsOneTableOfThreeCells) {
    const std::string html = text({.temperatureUnit = u'F'});
    EXPECT_NE(html.find("<tr><td>OutTemp</td><td>&deg;F</td><td align=right>53.6</td></tr>"),
              std::string::npos);
    EXPECT_NE(html.find("<tr><td>OutHumidity</td><td>%</td><td align=right>58%</td></tr>"),
              std::string::npos);
    const QString page = QString::fromStdString(html);
    EXPECT_EQ(page.count(QStringLiteral("<table")), 1);
    EXPECT_EQ(page.count(QStringLiteral("<td")), 3 * 11);
    EXPECT_LT(html.find("Barometer"), html.find("</table>"));
}

// Columns in another order than usual, one missing (gust_mph), one unknown.
constexpr char kLog[] =
    "time_utc,wind_mph,temperature_f,dew_point_f,humidity_pct,wind_direction_deg,"
    "precipitation_in,pressure_hpa,visibility_mi\r\n"
    "2026-11-06T20:00:00Z,10,32,23,46.41,360,0.10,1009.6,10\r\n"
    "2026-11-06T22:00:00Z,,-4,,,,,,\r\n"
    "not a time,1,2,3,4,5,6,7,8\r\n"
    "2026-11-06T21:00:00Z,1048.5,nan,abc,140,999,0.30,-5,10\r\n";

QDateTime utc(int hour, int minute = 0) {
    return QDateTime(QDate(2026, 11, 6), QTime(hour, minute), Qt::UTC);
}

TEST(ReplayLog, RecordInForceIsTheLastNotLaterThanTheTime) {
    const ReplayLog log = parseReplayLog(kLog);
    ASSERT_EQ(log.error, QString());
    ASSERT_EQ(log.records.size(), 3U);
    EXPECT_EQ(log.inForce(utc(19, 59)), nullptr);
    EXPECT_EQ(log.inForce(utc(20)), &log.records[0]);
    EXPECT_EQ(log.inForce(utc(20, 59)), &log.records[0]);
    EXPECT_EQ(log.inForce(utc(21)), &log.records[1]);
    EXPECT_EQ(log.inForce(utc(23)), &log.records[2]);
    // The record's time is UTC, the simulated time is local.
    EXPECT_EQ(log.inForce(utc(21).toLocalTime()), &log.records[1]);

    EXPECT_FALSE(cellsOf(log, utc(19), {}));
    for (const char* unreadable : {"", "time,wind_mph\n2026-11-06T20:00:00Z,1\n", "time_utc\n"})
        EXPECT_FALSE(parseReplayLog(unreadable).error.isEmpty()) << unreadable;
}

TEST(ReplayLog, MissingValuesAreEmptyAndImpossibleOnesStand) {
    const ReplayLog log = parseReplayLog(kLog);
    const StationForm form{.speedUnit = u'M', .temperatureUnit = u'F'};
    const auto cells = [&](const QDateTime& time, const StationForm& in) {
        const StationCells all = cellsOf(log, time, in).value();
        const QStringList texts{all.temperature, all.wind,     all.gust,     all.direction,
                                all.rainMax,     all.humidity, all.dewPoint, all.barometer};
        return texts.join(u'|').toStdString();
    };
    EXPECT_EQ(cells(utc(20), form), "32.0|10.0||N|2.5|46.4%|23.0|1009.6");
    EXPECT_EQ(cells(utc(20), {}), "0.0|16.1||N|2.5|46.4%|-5.0|1009.6");
    EXPECT_EQ(cells(utc(21), form), "nan|1048.5||999|10.2|140.0%|abc|-5.0");
    EXPECT_EQ(cells(utc(22), form), "-4.0|||||||");
    // The counter begins again with the local day.
    EXPECT_EQ(log.rainOfDay(utc(20).toLocalTime().addDays(1)), 0);
}

} // namespace
} // namespace skyhold
