// SPDX-License-Identifier: GPL-3.0-or-later
#include "datafiles/staleness.h"
#include "datafiles/station_file.h"
#include "platform/text_encoding.h"
#include "support/manual_clock.h"
#include "support/test_folder.h"

#include <sys/stat.h>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {
namespace {

using enum StationRead;

const QDateTime kModified(QDate(2026, 11, 16), QTime(9, 5, 2));

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
        choose(u"station.htm"_s);
        units.DateFormat.Index = 0;
        units.ExcChrHumidity = u"%"_s;
        const QStringList names =
            u"N NNE NE ENE E ESE SE SSE S SSW SW WSW W WNW NW NNW"_s.split(u' ');
        std::ranges::copy(names, units.Cardinal.begin());
    }

    QString path(const QString& name) const { return folder.filePath(name); }
    void choose(const QString& name) { controls.HTMFile.Caption = path(name); }
    void write(const QByteArray& bytes) {
        folder.write(controls.HTMFile.Caption.value().section(u'/', -1), bytes);
    }
    // An entry that could not be read stays as it was.
    StationRead read() {
        seen = {};
        const StationRead result = ReadStationFile(controls, units, forms, kModified, memory, seen);
        for (std::size_t i = 0; i < shown.size(); ++i)
            shown[i] = seen.texts[i].value_or(shown[i]);
        return result;
    }
    StationRead readBytes(const QByteArray& bytes) {
        write(bytes);
        return read();
    }
    QString entry(std::size_t i) const { return shown[i]; }
    QString entries() const { return QStringList(shown.begin(), shown.end()).join(u" | "_s); }
    static bool mayBeJudged(StationRead result) {
        return result == Valid || result == ValueMissing;
    }

    TestFolder folder;
    StationFileControls controls;
    UnitControls units;
    NumberForms forms;
    StationFileMemory memory;
    StationObservation seen; // of the last read
    std::array<QString, kStationEntries> shown;
};

TEST_F(StationFile, FillsEveryEntryFromAPage) {
    ASSERT_EQ(readBytes(htmlPage(kRows)), Valid);
    EXPECT_EQ(entries(), u"16/11 | 09:05:00 | -2.5 | 25.75 | 31.5 | 22.5 | 2.5 | 85 | -4.25 | "
                         "1012.5 | °C | km/h | hPa"_s);
    EXPECT_EQ(memory.recordTime, QDateTime(QDate(2026, 11, 16), QTime(9, 5)));
    EXPECT_EQ(seen.pressure, 1012.54);
    EXPECT_EQ(seen.numbers[Quantity::Wind], 25.75);
    EXPECT_EQ(memory.lastFileTime, fileTimeText(kModified));
    EXPECT_EQ(stationReadStatus(Valid), QString());

    // The rain goes through the locale's conversion, to which "1.5" is 15.
    forms = {u","_s, u"."_s};
    ASSERT_EQ(read(), Valid);
    EXPECT_EQ(entries(), u"16/11 | 09:05:00 | -2,5 | 25,75 | 31,5 | 22,5 | 11 | 85 | -4,25 | "
                         "1012,5 | °C | km/h | hPa"_s);
}

TEST_F(StationFile, DateAndTimeThatDoNotConvert) {
    ASSERT_EQ(readBytes(htmlPage(kRows)), Valid);
    const QDateTime before = memory.recordTime;

    std::vector<Row> rows = kRows;
    rows[0].value = "17/11/2026 10:00";
    rows[1].value = "17/11/2026 10:00";
    rows[6].value = "3";
    ASSERT_EQ(readBytes(htmlPage(rows)), Valid);
    EXPECT_EQ(memory.recordTime, before) << "a time without a date changes nothing";
    EXPECT_EQ(entry(0), u"16/11"_s);
    EXPECT_EQ(entry(1), u"10:00:00"_s);
    EXPECT_EQ(entry(3), u"3"_s) << "the other entries are still filled";

    rows[0].value = "11/17/2026";
    rows[1].value = "noon";
    units.DateFormat.Index = 1;
    ASSERT_EQ(readBytes(htmlPage(rows)), Valid);
    EXPECT_EQ(memory.recordTime, QDateTime(QDate(2026, 11, 17), QTime(0, 0)));
    EXPECT_EQ(entry(0) + entry(1), u"11/17noon"_s);
}

TEST_F(StationFile, NamesThatWereNeverThereReadZeroAndWhatIsNoNumberIsBlank) {
    ASSERT_EQ(readBytes(htmlPage({{"windspeed", "Bft", "--"},
                                  {"OutHumidity", "", "9%0 %"},
                                  {"WindDirection", "", "X"},
                                  {"Barometer", "", "--"}})),
              ValueMissing);
    EXPECT_EQ(entries(), u" |  | 0 |  | 0 |  | 0 | 90 | 0 |  |  | Bft | "_s);

    choose(u"DATA.CSV"_s);
    memory.reset();
    EXPECT_EQ(readBytes(csvText(kRows, "\r\n")), NoReadings) << "read as a page";
    EXPECT_EQ(entries(), u" |  | 0 | 0 | 0 | 0.0 | 0 | 0 | 0 | 0.0 |  |  | "_s);
}

TEST_F(StationFile, WhatIsNoStationFileFillsNothing) {
    ASSERT_EQ(readBytes(htmlPage(kRows)), Valid);
    const QString before = entries();
    memory.lastFileTime.clear();

    ASSERT_TRUE(QDir(folder.path()).mkdir(u"folder"_s));
    ASSERT_EQ(mkfifo(qPrintable(path(u"pipe"_s)), 0600), 0);
    ASSERT_TRUE(QFile::resize(folder.write(u"large"_s, htmlPage(kRows)), kStationFileLimit + 1));
    for (const auto& [name, result] : {std::pair{u"missing"_s, Missing},
                                       {u"folder"_s, NotAFile},
                                       {u"pipe"_s, NotAFile},
                                       {u"large"_s, TooLarge}}) {
        choose(name);
        EXPECT_EQ(read(), result) << qPrintable(name);
        EXPECT_EQ(memory.lastFileTime, QString());
    }
    controls.HTMFile.Caption = QString();
    EXPECT_EQ(read(), Missing);

    choose(u"binary"_s);
    EXPECT_EQ(readBytes(htmlPage(kRows) + '\0'), NotText);
    EXPECT_EQ(entries(), before);
    EXPECT_EQ(readBytes(QByteArray()), NoReadings);
    EXPECT_EQ(readBytes("\xFF\xD8\xFF\xE0<table>\x9D\x81</table>"), NoReadings);
}

TEST_F(StationFile, FoundWithoutRegardToCaseAndReadAsAnsiOrUtf8) {
    std::vector<Row> rows = kRows;
    rows[2].unit = "°C";
    const QByteArray utf8 = htmlPage(rows);
    for (const QByteArray& bytes : {utf8, encodeAnsi(QString::fromUtf8(utf8))}) {
        choose(u"station.htm"_s);
        write(bytes);
        choose(u"Station.HTM"_s);
        EXPECT_EQ(read(), Valid);
        EXPECT_EQ(entry(10), u"°C"_s);
    }
}

// What a station writes when an instrument fails would read as 0: calm, or neither cold nor hot.
// Every other value stays what it is.
TEST_F(StationFile, WhatIsNoNumberOrGoneIsMissingByItself) {
    const struct {
        const char* name;
        std::size_t entry;
        QString zero;
    } quantities[] = {{"WindSpeed", 3, u"0"_s}, {"Gust", 4, u"0"_s},
                      {"OutTemp", 2, u"0"_s},   {"OutHumidity", 7, u"0"_s},
                      {"DewPoint", 8, u"0"_s},  {"WindDirection", 5, u"0.0"_s}};
    ASSERT_EQ(readBytes(htmlPage(kRows)), Valid);
    QStringList whole;
    for (const auto& quantity : quantities)
        whole << entry(quantity.entry);
    const auto expect = [&](const std::vector<Row>& rows, StationRead read, qsizetype changed,
                            const QString& shown) {
        EXPECT_EQ(readBytes(htmlPage(rows)), read);
        for (qsizetype i = 0; i < whole.size(); ++i)
            EXPECT_EQ(entry(quantities[i].entry), i == changed ? shown : whole[i]) << i;
    };
    for (qsizetype i = 0; i < std::ssize(quantities); ++i) {
        const auto& [name, at, zero] = quantities[i];
        const bool direction = at == 5;
        for (const char* value : {"--", "nan", "-inf", "1e999", "12,5", "1.012.5", "", " %"}) {
            SCOPED_TRACE(testing::Message() << name << ' ' << value);
            std::vector<Row> rows = without(name);
            rows.push_back({name, "", value});
            memory.reset(); // in the first read of a session as in any other
            expect(rows, direction ? Valid : ValueMissing, i, {});
            expect(kRows, Valid, i, whole[i]);
            expect(rows, direction ? Valid : ValueMissing, i, {});
        }
        SCOPED_TRACE(name);
        memory.reset();
        expect(without(name), Valid, i, zero); // no such instrument
        expect(kRows, Valid, i, whole[i]);
        expect(without(name), ValueMissing, i, {});
    }
    EXPECT_EQ(readBytes(htmlPage(without("Barometer"))), Valid);
    EXPECT_EQ(readBytes(htmlPage({})), NoReadings);

    std::vector<Row> decimalCommas = without("WindSpeed");
    decimalCommas.push_back({"WindSpeed", "km/h", "12,5"});
    forms = {u","_s, u"."_s};
    EXPECT_EQ(readBytes(htmlPage(decimalCommas)), Valid);
    EXPECT_EQ(entry(3), u"12,5"_s);
}

TEST_F(StationFile, CsvThatStopsInsideARecordIsIncomplete) {
    choose(u"data.csv"_s);
    // Two fields at the end tell at once, a missing line end only by comparison.
    EXPECT_EQ(readBytes("WindSpeed,km/h,25.75\nGust,km/h"), Incomplete);
    EXPECT_EQ(readBytes("WindSpeed,km/h,25.75\nGust,km/h"), Incomplete);
    memory.reset();
    EXPECT_EQ(readBytes("Gust,km/h,31.5\nWindSpeed,km/h,2"), Incomplete) << "first";
    EXPECT_EQ(readBytes("Gust,km/h,31.5\nWindSpeed,km/h,2"), Valid);
    EXPECT_EQ(readBytes("Gust,km/h,31.5\nWindSpeed,km/h,25\n\n"), Valid);
    EXPECT_EQ(readBytes("Gust,km/h,31.5\nWindSpeed,km/h,2"), Incomplete);

    // What follows the records, and whether the file is torn for ever with it.
    const QByteArray records = csvText(without("DewPoint"), "\r\n");
    const std::pair<QByteArray, StationRead> ends[] = {
        {"made by a station\r\n", Valid},
        {"two,fields\r\n", Valid},
        {"\x1A", Valid},
        {"made by a station\r\n\x1A", Valid},
        {"no line end", Valid},
        {"Dew", Incomplete},
        {"\x1A\nDew", Valid}, // behind the mark
        {"dewpoint,C\r\n", Incomplete},
        {"more,gust\r\n", Incomplete},
        {"\"", Incomplete},
        {"DewPoint,C,\"4\r\n", Incomplete},
    };
    for (const auto& [end, read] : ends) {
        memory.reset();
        readBytes(records + end);
        EXPECT_EQ(readBytes(records + end), read) << end.constData();
        EXPECT_EQ(entry(3), u"25.75"_s) << end.constData();
    }
}

// The station was caught while it wrote its file.
TEST_F(StationFile, TornAtEveryByteNeverGivesAWrongWind) {
    std::vector<Row> windLast = without("WindSpeed");
    windLast.push_back({"WindSpeed", "km/h", "25.75"});
    const std::vector<std::pair<QString, QByteArray>> files = {
        {u"page.htm"_s, htmlPage(kRows)},         {u"crlf.csv"_s, csvText(kRows, "\r\n")},
        {u"lf.csv"_s, csvText(kRows, "\n")},      {u"wind-last.csv"_s, csvText(windLast, "\r\n")},
        {u"wind-last.htm"_s, htmlPage(windLast)},
    };
    for (const auto& [name, whole] : files) {
        choose(name);
        memory.reset();
        ASSERT_EQ(readBytes(whole), Valid);
        qsizetype valid = 0;
        const StationFileMemory known = memory;
        for (qsizetype length = 0; length < whole.size(); ++length) {
            write(whole.left(length));
            for (const StationFileMemory& before : {known, StationFileMemory()}) {
                memory = before;
                const StationRead judged = read();
                if (!mayBeJudged(judged))
                    continue;
                valid += judged == Valid;
                SCOPED_TRACE(qPrintable(u"%1 %2"_s.arg(name).arg(length)));
                // The value, or none.
                EXPECT_TRUE(u"25.75"_s.startsWith(entry(3)) && entry(3).size() % 5 == 0);
                EXPECT_TRUE(u"31.5"_s.startsWith(entry(4)) && entry(4).size() % 4 == 0);
                EXPECT_TRUE(u"-4.25"_s.startsWith(entry(8)) && entry(8).size() % 5 == 0);
            }
        }
        EXPECT_LT(valid, 100) << qPrintable(name) << ": only what lacks nothing that is judged";
    }
}

TEST(StationFileVerdict, Judgement) {
    const QDateTime written(QDate(2026, 11, 16), QTime(21, 0, 0, 250));
    const QDateTime now(QDate(2026, 11, 16), QTime(22, 0));
    const QString same = fileTimeText(written);
    const QString other = fileTimeText(written.addMSecs(-1));
    const QString never = neverReadFileTime();
    const QDateTime summer(QDate(2026, 10, 25), QTime(2, 59), Qt::OffsetFromUTC, 7200);
    const QDateTime winter(QDate(2026, 10, 25), QTime(2, 1), Qt::OffsetFromUTC, 3600);
    const struct {
        const char* what;
        QDateTime modified;
        QString last;
        QDateTime record, now;
        double timeout;
        StationFileState state;
        double age = 0;
        double since = 0; // seconds since the file was found rewritten
    } rows[] = {
        {"no file", {}, same, now, now, 3, StationFileState::Missing},
        {"no file, never read", {}, {}, now, now, 3, StationFileState::Missing},
        {"never read", written, {}, {}, now, 3, StationFileState::Refreshed},
        {"rewritten a millisecond later", written, other, {}, now, 3, StationFileState::Refreshed},
        {"at the limit", written, same, now.addSecs(-180), now, 3, StationFileState::Unchanged,
         180},
        {"left behind", written, never, {}, written.addSecs(181), 3, StationFileState::Old, 181},
        {"first read", written, never, {}, written.addSecs(180), 3, StationFileState::Refreshed},
        {"beyond the limit", written, same, now.addSecs(-181), now, 3, StationFileState::Old, 181},
        {"a record of the future", written, same, now.addSecs(181), now, 3, StationFileState::Old,
         181},
        {"a clock as wrong as the stop is long", written, same, now, now, 3, StationFileState::Old,
         3600, 3600},
        {"no minutes allowed", written, same, now, now, 0, StationFileState::Unchanged},
        {"a limit that is no number", written, same, now, now, qQNaN(), StationFileState::Old},
        {"the hour after summer time", written, same, summer, winter, 3,
         StationFileState::Unchanged, 120},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        const StationFileVerdict verdict =
            judgeStationFile(row.modified, row.last, row.record, row.now, row.timeout, row.since);
        EXPECT_EQ(verdict.state, row.state);
        EXPECT_EQ(verdict.ageSeconds, row.age);
    }
    // A record that was never read is too old whatever the limit.
    EXPECT_EQ(judgeStationFile(written, same, {}, now, 1e12).state, StationFileState::Old);
}

struct Staleness : testing::Test {
    Staleness() {
        controls.HTMFile.Caption = path;
        controls.TimeoutREAD.Value = 3;
    }
    void writeNow(const QString& name = u"WindSpeed"_s) const {
        const QString row = u"<tr><td>%1</td><td></td><td>%2</td></tr>"_s;
        folder.write(u"Station.htm"_s,
                     (u"<table>"_s + row.arg(u"Date"_s, clock.now().toString(u"dd/MM/yyyy"_s)) +
                      row.arg(u"Time"_s, clock.now().toString(u"HH:mm:ss"_s)) +
                      row.arg(name, u"5"_s) + u"</table>"_s)
                         .toUtf8());
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.setFileTime(clock.now(), QFileDevice::FileModificationTime));
    }
    StationObservation observe() {
        return observeStation(controls, UnitControls(), {}, clock, memory);
    }

    ManualClock clock;
    TestFolder folder;
    const QString path = folder.filePath(u"Station.htm"_s);
    StationFileControls controls;
    StationFileMemory memory;
};

TEST_F(Staleness, FromMissingToFreshToOldAndBack) {
    const auto expect = [this](SourceState state, StationFileState file, double age,
                               StationFileState alarm) {
        SCOPED_TRACE(testing::Message() << static_cast<int>(file) << ", " << age << " s");
        const StationObservation seen = observe();
        EXPECT_EQ(seen.state, state);
        EXPECT_EQ(seen.file, file);
        EXPECT_EQ(seen.ageSeconds, age);
        EXPECT_EQ(seen.timeoutSeconds, 180);
        EXPECT_EQ(seen.alarmState(), alarm);
        EXPECT_EQ(seen.detail.isEmpty(), state != SourceState::Unusable);
        EXPECT_EQ(seen.numbers[Quantity::Wind].has_value(), state == SourceState::Ok);
        EXPECT_EQ(seen.recordTime, memory.recordTime);
    };
    expect(SourceState::Absent, StationFileState::Missing, 0, StationFileState::Missing);
    writeNow();
    expect(SourceState::Ok, StationFileState::Refreshed, 0, StationFileState::Refreshed);
    clock.advanceMs(119'500);
    expect(SourceState::Ok, StationFileState::Unchanged, 119.5, StationFileState::Unchanged);
    clock.advanceMs(60'600);
    expect(SourceState::Old, StationFileState::Old, 180.1, StationFileState::Old);
    writeNow();
    expect(SourceState::Ok, StationFileState::Refreshed, 0, StationFileState::Refreshed);
    // The records that a station writes after it stopped come of age by themselves.
    memory.recordTime = clock.now().addSecs(180);
    clock.advanceSeconds(181);
    expect(SourceState::Old, StationFileState::Old, 181, StationFileState::Old);
    ASSERT_TRUE(QFile::remove(path));
    expect(SourceState::Absent, StationFileState::Missing, 0, StationFileState::Missing);
    writeNow();
    memory.reset();
    expect(SourceState::Ok, StationFileState::Refreshed, 0, StationFileState::Refreshed);
    clock.advanceSeconds(1);
    writeNow(u"Soil"_s);
    const StationObservation seen = observe();
    EXPECT_EQ(seen.state, SourceState::Unusable);
    EXPECT_EQ(seen.alarmState(), StationFileState::Old);
    EXPECT_EQ(seen.detail, stationReadStatus(StationRead::NoReadings));
}

} // namespace
} // namespace skyhold
