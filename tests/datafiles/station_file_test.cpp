#include "datafiles/station_file.h"

#include "platform/text_encoding.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <vector>

namespace skyhold {
namespace {

struct Row {
    const char* name;
    const char* unit;
    const char* value;
};

const std::vector<Row> kRows = {
    {"Date", "", "16/11/2026"},      {"Time", "", "9:05"},
    {"OutTemp", "&deg;C", "-2.5"},   {"RainDayMin", "mm", "1.5"},
    {"RainDayMax", "mm", "4"},       {"Gust", "km/h", "31.5"},
    {"WindSpeed", "km/h", "25.75"},  {"WindDirection", "", "nne "},
    {"OutHumidity", "%", "85 %"},    {"DewPoint", "&deg;C", "-4.25"},
    {"Barometer", "hPa", "1012.54"},
};

QByteArray htmlPage(const std::vector<Row>& rows) {
    QByteArray page = "<html><body>\r\n<table border=\"1\">\r\n<tr><th>Name</th></tr>\r\n";
    for (const Row& row : rows) {
        page += QByteArray("<tr><td>") + row.name + "</td><td align=right>" + row.unit +
                "</td><td>" + row.value + "&nbsp;</td></tr>\r\n";
    }
    return page + "</table>\r\n<p>made at night</p></body></html>\r\n";
}

QByteArray csvText(const std::vector<Row>& rows, const QByteArray& lineEnd) {
    QByteArray text;
    for (const Row& row : rows)
        text += QByteArray(row.name) + ", \"" + row.unit + "\", " + row.value + lineEnd;
    return text;
}

std::vector<Row> without(const char* name) {
    std::vector<Row> rows;
    for (const Row& row : kRows) {
        if (qstrcmp(row.name, name) != 0)
            rows.push_back(row);
    }
    return rows;
}

class StationFile : public testing::Test {
  protected:
    StationFile() {
        choose(QStringLiteral("station.htm"));
        units.DateFormat.Index = 0;
        units.ExcChrHumidity = QStringLiteral("%");
        constexpr std::array names{"N", "NNE", "NE", "ENE", "E", "ESE", "SE", "SSE",
                                   "S", "SSW", "SW", "WSW", "W", "WNW", "NW", "NNW"};
        for (std::size_t i = 0; i < names.size(); ++i)
            units.Cardinal[i] = QString::fromLatin1(names[i]);
    }

    QString path(const QString& name) const { return folder.filePath(name); }
    void choose(const QString& name) { controls.HTMFile.Caption = path(name); }
    void write(const QByteArray& bytes) {
        QFile file(controls.HTMFile.Caption);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        ASSERT_EQ(file.write(bytes), bytes.size());
    }
    StationRead read() {
        return ReadStationFile(controls, units, forms, QStringLiteral("time of the file"), memory,
                               readings, display);
    }
    StationRead readBytes(const QByteArray& bytes) {
        write(bytes);
        return read();
    }
    QString entry(std::size_t i) const { return display.LblWSValue[i].Caption; }
    QStringList entries() const {
        QStringList texts;
        for (const Label& label : display.LblWSValue)
            texts << label.Caption;
        return texts;
    }

    QTemporaryDir folder;
    StationFileControls controls;
    UnitControls units;
    NumberForms forms;
    StationFileMemory memory;
    CurrentReadings readings;
    ReadingDisplay display;
};

QStringList texts(std::initializer_list<const char*> list) {
    QStringList result;
    for (const char* text : list)
        result << QString::fromUtf8(text);
    return result;
}

TEST_F(StationFile, FillsEveryEntryFromAPage) {
    ASSERT_EQ(readBytes(htmlPage(kRows)), StationRead::Valid);
    EXPECT_EQ(entries(), texts({"16/11", "09:05:00", "-2.5", "25.75", "31.5", "22.5", "2.5", "85",
                                "-4.25", "1012.5", "°C", "km/h", "hPa"}));
    QStringList descriptions;
    for (const Label& label : display.LblWSDesc)
        descriptions << label.Caption;
    EXPECT_EQ(descriptions,
              texts({"Date", "Time", "OutTemp", "WindSpeed", "Gust", "WindDirection", "RainDaily",
                     "OutHumidity", "DewPoint", "Barometer", "Units", "Units", "Units"}));
    EXPECT_EQ(readings.StationDateTime, QDateTime(QDate(2026, 11, 16), QTime(9, 5)));
    EXPECT_EQ(readings.BarometricPressure, 1012.54);
    EXPECT_EQ(readings.LastFileTime, QStringLiteral("time of the file"));
    EXPECT_EQ(stationReadStatus(StationRead::Valid), QString());
}

TEST_F(StationFile, FillsEveryEntryFromCsvWithEitherLineEnd) {
    choose(QStringLiteral("a.csv.txt"));
    for (const char* lineEnd : {"\r\n", "\n"}) {
        readings = {};
        ASSERT_EQ(readBytes(csvText(kRows, lineEnd)), StationRead::Valid);
        EXPECT_EQ(entries(), texts({"16/11", "09:05:00", "-2.5", "25.75", "31.5", "22.5", "2.5",
                                    "85", "-4.25", "1012.5", "&deg;C", "km/h", "hPa"}));
    }
}

TEST_F(StationFile, CommaLocale) {
    forms = {QStringLiteral(","), QStringLiteral(".")};
    ASSERT_EQ(readBytes(htmlPage(kRows)), StationRead::Valid);
    // The rain goes through the locale's conversion, to which "1.5" is 15.
    EXPECT_EQ(entries(), texts({"16/11", "09:05:00", "-2,5", "25,75", "31,5", "22,5", "11", "85",
                                "-4,25", "1012,5", "°C", "km/h", "hPa"}));
}

TEST_F(StationFile, DateAndTimeThatDoNotConvert) {
    ASSERT_EQ(readBytes(htmlPage(kRows)), StationRead::Valid);
    const QDateTime before = readings.StationDateTime;

    std::vector<Row> rows = kRows;
    rows[0].value = "17/11/2026 10:00";
    rows[1].value = "10:00";
    rows[6].value = "3";
    ASSERT_EQ(readBytes(htmlPage(rows)), StationRead::Valid);
    EXPECT_EQ(readings.StationDateTime, before) << "a time without a date changes nothing";
    EXPECT_EQ(entry(0), QStringLiteral("16/11"));
    EXPECT_EQ(entry(1), QStringLiteral("10:00:00"));
    EXPECT_EQ(entry(3), QStringLiteral("3")) << "the other entries are still filled";

    rows[0].value = "11/17/2026";
    rows[1].value = "noon";
    units.DateFormat.Index = 1;
    ASSERT_EQ(readBytes(htmlPage(rows)), StationRead::Valid);
    EXPECT_EQ(readings.StationDateTime, QDateTime(QDate(2026, 11, 17), QTime(0, 0)));
    EXPECT_EQ(entry(0), QStringLiteral("11/17"));
    EXPECT_EQ(entry(1), QStringLiteral("noon"));
}

TEST_F(StationFile, MissingNamesAndOddValuesReadZeroOrEmpty) {
    ASSERT_EQ(readBytes(htmlPage({{"windspeed", "Bft", "--"},
                                  {"OutHumidity", "", "9%0 %"},
                                  {"WindDirection", "", "X"}})),
              StationRead::Valid);
    EXPECT_EQ(entries(),
              texts({"", "", "0", "0", "0", "0.0", "0", "90", "0", "0.0", "", "Bft", ""}));

    choose(QStringLiteral("DATA.CSV"));
    memory.reset();
    EXPECT_EQ(readBytes(csvText(kRows, "\r\n")), StationRead::NoReadings) << "read as a page";
    EXPECT_EQ(entries(), texts({"", "", "0", "0", "0", "0.0", "0", "0", "0", "0.0", "", "", ""}));
}

TEST_F(StationFile, LongCellsAreCutAndHarmless) {
    const QByteArray longText(4'000'000, ',');
    const QByteArray page = htmlPage({{"WindSpeed", longText.constData(), longText.constData()},
                                      {"Date", "", longText.constData()},
                                      {"Time", "", longText.constData()}});
    ASSERT_EQ(readBytes(page), StationRead::Valid);
    EXPECT_EQ(entry(1).size(), 255);
    EXPECT_EQ(entry(3), QStringLiteral("0"));
    EXPECT_EQ(entry(11).size(), 255);
}

TEST_F(StationFile, WhatIsNoStationFileFillsNothing) {
    ASSERT_EQ(readBytes(htmlPage(kRows)), StationRead::Valid);
    const QStringList before = entries();
    readings.LastFileTime.clear();

    struct Case {
        const char16_t* name;
        StationRead read;
    };
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("folder")));
    ASSERT_EQ(mkfifo(path(QStringLiteral("pipe")).toLocal8Bit().constData(), 0600), 0);
    choose(QStringLiteral("large"));
    write(htmlPage(kRows));
    ASSERT_TRUE(QFile::resize(controls.HTMFile.Caption, kStationFileLimit + 1));
    for (const Case& c :
         {Case{u"missing", StationRead::Missing}, Case{u"folder", StationRead::NotAFile},
          Case{u"pipe", StationRead::NotAFile}, Case{u"large", StationRead::TooLarge}}) {
        choose(QString::fromUtf16(c.name));
        EXPECT_EQ(read(), c.read) << qPrintable(QString::fromUtf16(c.name));
        EXPECT_EQ(readings.LastFileTime, QString());
    }
    controls.HTMFile.Caption = QString();
    EXPECT_EQ(read(), StationRead::Missing);

    choose(QStringLiteral("binary"));
    EXPECT_EQ(readBytes(htmlPage(kRows) + '\0'), StationRead::NotText);
    EXPECT_EQ(entries(), before);
    EXPECT_EQ(readBytes(QByteArray()), StationRead::NoReadings);
    EXPECT_EQ(readBytes("\xFF\xD8\xFF\xE0<table>\x9D\x81</table>"), StationRead::NoReadings);
}

TEST_F(StationFile, FoundWithoutRegardToCaseAndReadAsAnsiOrUtf8) {
    std::vector<Row> rows = kRows;
    rows[2].unit = "°C";
    const QByteArray utf8 = htmlPage(rows);
    for (const QByteArray& bytes : {utf8, encodeAnsi(QString::fromUtf8(utf8))}) {
        choose(QStringLiteral("station.htm"));
        write(bytes);
        choose(QStringLiteral("Station.HTM"));
        EXPECT_EQ(read(), StationRead::Valid);
        EXPECT_EQ(entry(10), QStringLiteral("°C"));
    }
}

TEST_F(StationFile, NameThatWasThereOnceMayNotGoMissing) {
    for (const char* name :
         {"WindSpeed", "Gust", "OutTemp", "OutHumidity", "DewPoint", "WindDirection"}) {
        memory.reset();
        EXPECT_EQ(readBytes(htmlPage(without(name))), StationRead::Valid) << name;
        EXPECT_EQ(readBytes(htmlPage(kRows)), StationRead::Valid) << name;
        EXPECT_EQ(readBytes(htmlPage(without(name))), StationRead::Incomplete) << name;
        EXPECT_EQ(readBytes(htmlPage(kRows)), StationRead::Valid) << name;
    }
    EXPECT_EQ(readBytes(htmlPage(without("Barometer"))), StationRead::Valid);
    EXPECT_EQ(readBytes(htmlPage({})), StationRead::NoReadings);
    memory.reset();
    EXPECT_EQ(readBytes(htmlPage(without("Gust"))), StationRead::Valid) << "a new session";
}

TEST_F(StationFile, CsvThatStopsInsideARecordIsIncomplete) {
    choose(QStringLiteral("data.csv"));
    // Two fields at the end tell at once, a missing line end only by comparison.
    EXPECT_EQ(readBytes("WindSpeed,km/h,25.75\nGust,km/h"), StationRead::Incomplete);
    EXPECT_EQ(readBytes("WindSpeed,km/h,25.75\nGust,km/h"), StationRead::Incomplete);
    memory.reset();
    EXPECT_EQ(readBytes("Gust,km/h,31.5\nWindSpeed,km/h,2"), StationRead::Incomplete) << "first";
    EXPECT_EQ(readBytes("Gust,km/h,31.5\nWindSpeed,km/h,2"), StationRead::Valid);
    EXPECT_EQ(readBytes("Gust,km/h,31.5\nWindSpeed,km/h,25\n\n"), StationRead::Valid);
    EXPECT_EQ(readBytes("Gust,km/h,31.5\nWindSpeed,km/h,2"), StationRead::Incomplete);
}

// The station was caught while it wrote its file.
TEST_F(StationFile, TornAtEveryByteNeverGivesAWrongWind) {
    std::vector<Row> windLast = without("WindSpeed");
    windLast.push_back({"WindSpeed", "km/h", "25.75"});
    const std::vector<std::pair<QString, QByteArray>> files = {
        {QStringLiteral("page.htm"), htmlPage(kRows)},
        {QStringLiteral("crlf.csv"), csvText(kRows, "\r\n")},
        {QStringLiteral("lf.csv"), csvText(kRows, "\n")},
        {QStringLiteral("wind-last.csv"), csvText(windLast, "\r\n")},
        {QStringLiteral("wind-last.htm"), htmlPage(windLast)},
    };
    for (const auto& [name, whole] : files) {
        choose(name);
        memory.reset();
        ASSERT_EQ(readBytes(whole), StationRead::Valid);
        qsizetype valid = 0;
        const StationFileMemory known = memory;
        for (qsizetype length = 0; length < whole.size(); ++length) {
            write(whole.left(length));
            for (const StationFileMemory& before : {known, StationFileMemory()}) {
                memory = before;
                if (read() != StationRead::Valid)
                    continue;
                ++valid;
                SCOPED_TRACE(qPrintable(QStringLiteral("%1 %2").arg(name).arg(length)));
                EXPECT_EQ(entry(3), QStringLiteral("25.75"));
                EXPECT_EQ(entry(4), QStringLiteral("31.5"));
                EXPECT_EQ(entry(8), QStringLiteral("-4.25"));
            }
        }
        EXPECT_LT(valid, 100) << qPrintable(name) << ": only what lacks nothing that is judged";
    }
}

// What a station writes when an instrument fails would read as 0: calm, or neither cold nor hot.
TEST_F(StationFile, NumberThatWasThereOnceMayNotTurnIntoNone) {
    for (const char* name : {"WindSpeed", "Gust", "OutTemp", "OutHumidity", "DewPoint"}) {
        for (const char* value : {"--", "nan", "-inf", "1e999", "12,5", "", " %"}) {
            std::vector<Row> rows = without(name);
            rows.push_back({name, "", value});
            const bool still = qstrcmp(name, "Gust") == 0 && *value == '\0';
            memory.reset();
            EXPECT_EQ(readBytes(htmlPage(rows)), StationRead::Valid) << name << ' ' << value;
            EXPECT_EQ(readBytes(htmlPage(kRows)), StationRead::Valid);
            EXPECT_EQ(readBytes(htmlPage(rows)), still ? StationRead::Valid : StationRead::NoNumber)
                << name << ' ' << value;
            EXPECT_EQ(readBytes(htmlPage(kRows)), StationRead::Valid);
        }
    }
}

TEST(StationReadStatus, EveryFailureHasATextThatFits) {
    for (int read = static_cast<int>(StationRead::Missing);
         read <= static_cast<int>(StationRead::NoNumber); ++read) {
        const QString text = stationReadStatus(static_cast<StationRead>(read));
        EXPECT_TRUE(text.startsWith(QStringLiteral("Weather Station Data - "))) << read;
        EXPECT_LE(text.size(), 60) << read;
    }
}

} // namespace
} // namespace skyhold
