// SPDX-License-Identifier: GPL-3.0-or-later
#include "datafiles/ccdap_file.h"
#include "datafiles/column_list.h"
#include "datafiles/data_items.h"
#include "datafiles/station_number.h"
#include "datafiles/station_table.h"
#include "settings/key_table.h"
#include "support/manual_clock.h"
#include "support/test_folder.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <vector>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {
namespace {

const NumberForms kPoint{};
const NumberForms kComma{u","_s, u"."_s};

const char* shown(const char16_t* text) {
    static QByteArray bytes;
    bytes = QString::fromUtf16(text).toUtf8();
    return bytes.constData();
}

TEST(StationNumber, PointIsTheDecimalPointInEveryLocale) {
    const std::pair<const char16_t*, std::optional<double>> cases[] = {
        {u"12.5", 12.5}, {u" -3.25 ", -3.25}, {u"1012.5", 1012.5}, {u"85", 85},      {u"+7", 7},
        {u"1e2", 100},   {u"1e-05", 1e-5},    {u"-.5", -0.5},      {u"", {}},        {u" ", {}},
        {u"--", {}},     {u"nan", {}},        {u"inf", {}},        {u"-inf", {}},    {u"1e999", {}},
        {u"12 km", {}},  {u"0x10", {}},       {u".", {}},          {u"-", {}},       {u"1.2.3", {}},
        {u"1,2,3", {}},  {u"1.012.5", {}},    {u"1,012.5", {}},    {u"1.012,5", {}}, {u"1 012", {}},
    };
    for (const auto& [text, value] : cases) {
        EXPECT_EQ(ParseStationNumber(text, kPoint), value) << shown(text);
        EXPECT_EQ(ParseStationNumber(text, kComma), value) << shown(text);
    }
    EXPECT_EQ(ParseStationNumber(u"12,5", kComma), 12.5) << "the locale's own form";
    EXPECT_FALSE(ParseStationNumber(u"12,5", kPoint)) << "never 125";
    for (const char16_t c : {u'1', u','})
        EXPECT_FALSE(ParseStationNumber(QString(10'000'000, c), kPoint));
}

TEST(StationDate, OrderSeparatorsCenturiesAndRollOver) {
    // The last two: day 2026 of November 2016; with the other order the 2026th month.
    const struct {
        const char16_t* text;
        int dateFormat;
        const char* date;
    } cases[] = {
        {u"16/11/2026", 0, "2026-11-16"}, {u"11/16/2026", 1, "2026-11-16"},
        {u"16-11-26", 0, "2026-11-16"},   {u"16.11.2026", 0, "2026-11-16"},
        {u" 1/ 2 /26 ", 0, "2026-02-01"}, {u"01/02/26", -1, "2026-02-01"},
        {u"01/01/00", 0, "2000-01-01"},   {u"01/01/29", 0, "2029-01-01"},
        {u"01/01/30", 0, "1930-01-01"},   {u"01/01/99", 0, "1999-01-01"},
        {u"31/02/2026", 0, "2026-03-03"}, {u"11/16/2026", 0, "2027-04-11"},
        {u"0/1/2026", 0, "2025-12-31"},   {u"1/0/2026", 0, "2025-12-01"},
        {u"1/1/9999", 0, "9999-01-01"},   {u"-1/1/2026", 0, "2025-12-30"},
        {u"2026-11-16", 0, "2022-05-19"}, {u"2026-11-16", 1, "2184-10-11"},
    };
    for (const auto& [text, dateFormat, date] : cases)
        EXPECT_EQ(ParseStationDate(text, dateFormat).value_or(QDate()).toString(Qt::ISODate),
                  QLatin1String(date))
            << shown(text);
    for (const char16_t* none :
         {u"16/11/2026 22:00", u"16/11", u"16/11-2026", u"", u"16//2026", u"16/11/", u"a/b/c",
          u"1/1/99999", u"32000/1/9999", u"1/1/2026/", u"1/1/-26", u"1e1/1/26"})
        EXPECT_FALSE(ParseStationDate(none, 0)) << shown(none);
}

TEST(StationTime, TwelveAndTwentyFourHours) {
    const std::pair<const char16_t*, QTime> cases[] = {
        {u"7:05", {7, 5}},           {u"22:15", {22, 15}},
        {u"22:15:59", {22, 15, 59}}, {u" 7:05 pm ", {19, 5}},
        {u"7:05:09PM", {19, 5, 9}},  {u"12:00 AM", {0, 0}},
        {u"12:30 PM", {12, 30}},     {u"00:00", {0, 0}},
        {u"14.05.09", {14, 5, 9}},   {u"9:5:7", {9, 5, 7}},
        {u"22.15", {22, 15}},        {u"16/11/2026 14:05:09", {14, 5, 9}},
        {u"16.11.26 9.5", {9, 5}},   {u"11-16-2026  2:05 PM", {14, 5}},
    };
    for (const auto& [text, time] : cases)
        EXPECT_EQ(parseStationTime(text), time) << shown(text);
    for (const char16_t* none : {u"24:00", u"13:00 PM", u"0:30 AM", u"7", u"", u"PM", u"22:60",
                                 u"22:15:60", u"22:15:59:1", u"-1:00", u"22:+5", u"22:", u"22:005",
                                 u"22.15:9", u"at 14:05", u"16/11/2026", u"14:05 16/11/2026"})
        EXPECT_FALSE(parseStationTime(none)) << shown(none);
}

// The rows of the table as "name|unit|value", parted by " / ".
QString dump(const StationTable& table) {
    QStringList rows;
    for (qsizetype row = 1; row <= table.rowCount(); ++row)
        rows << u"%1|%2|%3"_s.arg(table.cell(1, row), table.cell(2, row), table.cell(3, row));
    return rows.join(u" / "_s);
}

struct Case {
    const char16_t* text;
    const char16_t* rows;
    bool cutShort = false;
    bool openQuote = false;
};

TEST(CsvTable, FollowsSequentialInput) {
    const std::vector<Case> cases = {
        {u"", u""},
        {u"a,b,c", u"a|b|c"},
        {u"a,b,c\r\nd,e,f\r\n", u"a|b|c / d|e|f"},
        {u"a,b,c\nd,e,f\n", u"a|b|c / d|e|f"},
        {u"a,b,c\rd,e,f\r", u"a|b|c / d|e|f"},
        {u" a b ,\tb , c \r\n", u"a b|b|c"},
        {u"\"a,1\",\" b \", \"c\" \r\n", u"a,1| b |c"},
        {u"\"a\"x,b,c\n", u"a|b|c"},
        {u"a,\"b\nb\",c\n", u"a|b\nb|c"},
        {u"a,b\r\nc\r\nd,e,f", u"a|b|c / d|e|f"},
        {u"a,,\r\n,,\r\n", u"a|| / ||"},
        {u"a,b,c,d\r\ne,f", u"a|b|c / d|e|f"},
        {u"a,b,c\r\n\r\n", u"a|b|c / ||"},
        {u"a,b,c\r\nd", u"a|b|c / d||", true},
        {u"a,b,c\r\nd,e", u"a|b|c / d|e|", true},
        {u"a,b,c\r\nd,e,", u"a|b|c / d|e|", true},
        {u"a,b,\"c", u"a|b|c", false, true},
        {u"a,b,c\n\"", u"a|b|c / ||", false, true},
        {u"a,b,\"c\n", u"a|b|c\n", false, true},
        {u"a,b,c\nd,\"e", u"a|b|c / d|e|", true, true},
    };
    for (const Case& c : cases) {
        const StationTable table = ParseCsvTable(c.text);
        EXPECT_EQ(dump(table), QStringView(c.rows)) << qPrintable(QString::fromUtf16(c.text));
        EXPECT_EQ(table.cutShort(), c.cutShort) << qPrintable(QString::fromUtf16(c.text));
        EXPECT_EQ(table.openQuote(), c.openQuote) << qPrintable(QString::fromUtf16(c.text));
    }
}

TEST(HtmlTable, TakesTheCellsOfTheFirstTable) {
    const std::vector<Case> cases = {
        {u"", u""},
        {u"no table", u""},
        {u"<table><tr><td>a</td></tr>", u""},
        {u"</table><table><tr><td>a</td></tr>", u""},
        {u"<p><table border=1><tr><td>a</td><td x=y>b</td><td>c</td></tr></table>", u"a|b|c"},
        {u"<table><tr><td>a</td></tr></table><table><tr><td>b</td></tr></table>", u"a||"},
        {u"<TABLE><tr><td>a</td></tr></TABLE>", u""},
        {u"<table><TR><td>a</td></TR><tr><td>b</td></tr></table>", u"b||"},
        {u"<table><tr x><td>a</td></tr><tr><td>b</td></tr></table>", u"b||"},
        {u"<table><tr><th>a</th></tr><tr><td>b</td></tr></table>", u"|| / b||"},
        {u"<table><tr><td>a</td></tr><tr><td>b</td></table></tr>", u"a||"},
        {u"<table><tr><td>a</tr><tr><td>b</td></tr></table>", u"|| / b||"},
        {u"<table><tr><td</tr><tr><td>b</td></tr></table>", u"|| / b||"},
        {u"<table><tr><td>a<td>b</td><td>c</td></tr></table>", u"a<td>b|c|"},
        {u"<table><tr></tr><tr><td>b</td></tr></table>", u"|| / b||"},
        // A fourth cell ends the table.
        {u"<table><tr><td>a</td><td>b</td><td>c</td></tr>"
         u"<tr><td>d</td><td>e</td><td>f</td><td>g</td></tr><tr><td>h</td></tr></table>",
         u"a|b|c / d|e|f"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(dump(ParseHtmlTable(c.text)), QStringView(c.rows))
            << qPrintable(QString::fromUtf16(c.text));
    }
}

TEST(HtmlTable, CleansCellsInOrder) {
    const std::pair<QString, QString> cases[] = {
        {u" 12.5&nbsp;"_s, u"12.5"_s}, {u"<b>OutTemp</b>"_s, u"<b>OutTemp</b>"_s},
        {u"&amp;lt;"_s, u"<"_s},       {u"&amp;nbsp;x"_s, u"&nbsp;x"_s},
        {u"&deg;C"_s, u"°C"_s},        {u"&amp;&amp;amp;"_s, u"&&amp;"_s},
        {u"&#176;C"_s, u"#176;C"_s},   {u"a&quot;b'c%20d"_s, u"a b c d"_s},
        {u"&lt;1&gt;"_s, u"<1>"_s},    {u"\r\n  Wind\r\nSpeed \r\n"_s, u"WindSpeed"_s},
        {u"' \t'"_s, QString()},       {u"50%"_s, u"50%"_s},
    };
    for (const auto& [cell, cleaned] : cases) {
        const QString page = u"<table><tr><td class=x>"_s + cell + u"</td></tr></table>"_s;
        EXPECT_EQ(ParseHtmlTable(page).cell(1, 1), cleaned) << qPrintable(cell);
    }
}

TEST(StationTable, PlacesOutsideAreEmptyAndNamesIgnoreCase) {
    const StationTable table = ParseCsvTable(u"outtemp,C,1\nGust,,2\nOUTTEMP,F,3\n,,4\n");
    EXPECT_EQ(FindRow(table, u"OutTemp"), 1);
    EXPECT_EQ(FindRow(table, u"GUST"), 2);
    EXPECT_EQ(FindRow(table, u"Gus"), 0);
    EXPECT_EQ(table.cell(3, 2), u"2");
    EXPECT_EQ(table.cell(1, 4), u"");
    EXPECT_EQ(table.cell(3, 4), u"4");
    for (const auto& [cell, row] :
         std::vector<std::pair<int, qsizetype>>{{1, 0}, {0, 1}, {4, 1}, {1, 5}, {1, -1}})
        EXPECT_TRUE(table.cell(cell, row).isEmpty()) << cell << ',' << row;
}

// Texts on which a parser that looks ahead or moves text more than once would take minutes.
TEST(StationTable, HugeTextsArePassedOverOnce) {
    constexpr int kMany = 200'000;
    const auto many = [](const char16_t* part) {
        return QString::fromUtf16(part).repeated(kMany);
    };
    const auto page = [](const QString& cells) {
        return ParseHtmlTable(u"<table><tr>"_s + cells + u"</tr></table>"_s);
    };
    EXPECT_EQ(page(many(u"</tr><tr>")).rowCount(), kMany + 1);
    EXPECT_EQ(page(u"<td>"_s + many(u"&amp;") + u"</td>"_s).cell(1, 1).size(), kMany);
    EXPECT_EQ(page(many(u"<td")).rowCount(), 1);
    EXPECT_EQ(page(u"<td>"_s + many(u"<")).rowCount(), 1);
    EXPECT_EQ(ParseHtmlTable(many(u"<table>")).rowCount(), 0);
    EXPECT_EQ(ParseCsvTable(many(u",,\n")).rowCount(), kMany);
    EXPECT_EQ(ParseCsvTable(many(u"\"")).rowCount(), 1);
}

// Moves on by a second whenever it is asked.
class RunningClock : public ManualClock {
  public:
    using ManualClock::ManualClock;
    QDateTime now() const override { return ManualClock::now().addSecs(asked_++); }

  private:
    mutable int asked_ = 0;
};

CurrentReadings someReadings() {
    CurrentReadings readings;
    readings.SensorValues = {-21.34, 900, 12, 3, 100, 30};
    readings.AmbientTemperature = -5.3;
    readings.SkySensorTemperature = 12345.6;
    readings.WindSpeed = 0.25;
    readings.HumidityValue = 1000;
    readings.DewPointValue = -0.04;
    readings.Condition[Quantity::Cloud] = CloudVeryCloudy;
    readings.Condition[Quantity::Wind] = WindWindy;
    readings.Condition[Quantity::Rain] = RainDry;
    readings.Condition[Quantity::Brightness] = BrightnessDark;
    readings.SpeedUnit = SpeedCode::MetresPerSecond;
    return readings;
}

TEST(CcdapFile, RecordByteByByte) {
    const RunningClock clock(QDateTime(QDate(2026, 11, 16), QTime(23, 59, 59)));
    // The time and the day number were asked for one and two seconds after the date. Fields that
    // are too narrow keep the last characters.
    EXPECT_EQ(ccdapRecord(someReadings(), clock, kPoint),
              QByteArray("2026-11-16 00:00:00.00 C m "
                         " -21.3   -5.3 2345.6    0.3 000    0.0 100 0 0 00003 "
                         "046343.00001 3 2 1 1"));

    CurrentReadings wet = someReadings();
    wet.Condition[Quantity::Rain] = RainUnknown;
    wet.TemperatureUnit = TemperatureCode::Unknown;
    wet.SpeedUnit = SpeedCode::Knots;
    wet.StationDataOld = true;
    wet.DewPointValue.reset(); // missing: the record has no other word for it than 0
    wet.Condition[Quantity::Cloud] = CloudUnknown;
    const ManualClock noon(QDateTime(QDate(2026, 11, 16), QTime(12, 0)));
    EXPECT_EQ(ccdapRecord(wet, noon, kComma),
              QByteArray("2026-11-16 12:00:00.00   k "
                         " -21,3   -5,3 2345,6    0,3 000    0,0 100 2 2 01000 "
                         "046342,50000 0 2 0 1"));
    const NumberForms odd{u"€\u066B.."_s, QString()};
    EXPECT_EQ(ccdapRecord(wet, noon, odd).size(), kCcdapRecordLength);
    EXPECT_EQ(FormatFixedField(12, u"0", 2, kPoint), u"2 "_s);
}

TEST(CcdapFile, RewritesTheFirstHundredBytesOfAFileThatHasAPlace) {
    const TestFolder folder;
    const ManualClock clock;
    CcdapControls controls;
    const auto write = [&](const QString& path, const QString& name) {
        controls.LblPathNameCCDAP4.Caption = path;
        controls.FileNameCCDAP4.Text = name;
        return WriteCcdapFile(controls, someReadings(), clock, kPoint);
    };
    const QString name = u"weather.dat"_s;
    const QByteArray record = ccdapRecord(someReadings(), clock, kPoint);
    ASSERT_TRUE(write(folder.path() + u'\\', name));
    EXPECT_EQ(folder.read(name), record);
    folder.write(name, QByteArray(120, 'x'));
    ASSERT_TRUE(write(folder.path(), name));
    EXPECT_EQ(folder.read(name), record + QByteArray(20, 'x'));

    EXPECT_TRUE(write(folder.filePath(u"missing"_s), u"  "_s)) << "no name is no failure";
    EXPECT_FALSE(write(folder.filePath(u"missing"_s), name));
    EXPECT_FALSE(write({}, name));
    EXPECT_FALSE(write(folder.path(), u"."_s)) << "a folder";
}

struct DataItems : testing::Test {
    DataItems() {
        for (std::size_t i = 0; i < columns.size(); ++i)
            columns[i] = defaultDataColumn(static_cast<int>(i) + 1);
        readings.LastReading = QDateTime(QDate(2026, 11, 6), QTime(9, 5, 7));
        readings.Condition[Quantity::Cloud] = CloudVeryCloudy;
        readings.Condition[Quantity::Rain] = RainDry;
        readings.Condition[Quantity::Wind] = WindUnknown;
        readings.Condition[Quantity::Gust] = WindWindy;
        readings.Condition[Quantity::Temperature] = TemperatureLow;
        readings.Condition[Quantity::Dew] = DewHigh;
        readings.Condition[Quantity::Humidity] = HumidityMedium;
        readings.Condition[Quantity::Brightness] = BrightnessDark;
        readings.SensorValues = {-21.34, 2849.5, 61, 3.25, 100, 31.06};
        readings.AmbientTemperature = -0.04;
        readings.StationTemperature = 99;
        readings.WindSpeed = 12.5;
        readings.GustSpeed = 20.49;
        readings.WindDirection = 337.5;
        readings.DewPointValue = 4;
        readings.HumidityValue = 58;
        readings.RainHeaterStatus = u"Normal"_s;
        readings.SwitchValue = 2;
    }
    DataItemSource source() const {
        return {readings, forms, [](Quantity quantity, std::int32_t level) {
                    return u"q%1 l%2"_s.arg(static_cast<int>(quantity)).arg(level);
                }};
    }
    QString item(int number) const { return FormatDataItem(number, source()); }

    CurrentReadings readings;
    NumberForms forms;
    DataColumns columns;
};

TEST_F(DataItems, WholeLineOfEveryItem) {
    forms = {u","_s, u"."_s};
    EXPECT_EQ(
        dataLine(columns, source()),
        QByteArray(
            R"("2026-11-06","09:05:07","q0 l3","q1 l1","q3 l0","q4 l2","q5 l1","q6 l3","q7 l2",)"
            R"("q2 l1","-21,3","2850","13","20","337,5","0,0","4,0","58","61","100%","31,1",)"
            R"("3,3","Normal","Closed","Safe")"));
    EXPECT_EQ(
        dataHeaderLine(columns),
        QByteArray(R"("Date","Time","Cloud Condition","Rain Condition","Wind Condition",)"
                   R"("Gust Condition","Temperature Condition","DewPoint Condition",)"
                   R"("Humidity Condition","Brightness Condition","Cloud Value","Rain Value",)"
                   R"("Wind Speed","Gust Speed","Wind Direction","Ambient Temperature","DewPoint",)"
                   R"("Humidity","Brightness Value","Rain Heating Percentage",)"
                   R"("Rain Sensor Temperature","Cloud Sensor Temperature","Heating Status",)"
                   R"("Switch Status","Safe Condtition")"));
}

TEST_F(DataItems, SwitchVerdictAndUnknownItems) {
    const std::pair<double, QString> states[] = {{0, u"Unknown"_s}, {1, u"Opened"_s},
                                                 {2, u"Closed"_s},  {1.6, u"Closed"_s},
                                                 {3, {}},           {-1, {}}};
    for (const auto& [value, text] : states) {
        readings.SwitchValue = value;
        EXPECT_EQ(item(24), text) << value;
    }
    readings.UnsafeFlag = true;
    EXPECT_EQ(item(25), u"Unsafe"_s);
    readings = {}; // nothing read yet
    for (const int empty : {0, 1, 13, 14, 15, 17, 18, 26})
        EXPECT_EQ(item(empty), QString()) << empty;
}

TEST_F(DataItems, ColumnsAsTheUserArrangedThem) {
    readings.RainHeaterStatus = u"a \"b\",\r\nc° Ω"_s;
    for (DataColumn& column : columns)
        column.Prt = false;
    EXPECT_EQ(dataHeaderLine(columns), QByteArray());
    EXPECT_EQ(dataLine(columns, source()), QByteArray());

    columns[0] = {.Hdr = u" Outside, °C "_s, .Cal = 16, .Prt = true};
    columns[3] = {.Hdr = u"\"1234567890123456789012345"_s, .Cal = 23, .Prt = true};
    columns[24] = {.Hdr = QString(), .Cal = 99, .Prt = true};
    EXPECT_EQ(dataHeaderLine(columns), QByteArray("\"Outside, \xB0"
                                                  "C\",\"\"\"123456789012345678901234\",\"\""));
    EXPECT_EQ(dataLine(columns, source()), QByteArray("\"0.0\",\"a \"\"b\"\",  c\xB0 ?\",\"\""));
}

} // namespace
} // namespace skyhold
