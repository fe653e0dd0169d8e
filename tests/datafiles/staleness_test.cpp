#include "datafiles/station_file.h"

#include "support/manual_clock.h"
#include "support/test_folder.h"

#include <limits>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;
using enum StationFileState;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

TEST(StationFileAge, Judgement) {
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
        {"no file", {}, same, now, now, 3, Missing},
        {"no file, never read", {}, {}, now, now, 3, Missing},
        {"never read", written, {}, {}, now, 3, Refreshed},
        {"rewritten a millisecond later", written, other, {}, now, 3, Refreshed},
        {"at the limit", written, same, now.addSecs(-180), now, 3, Unchanged, 180},
        {"left behind", written, never, {}, written.addSecs(181), 3, Old, 181},
        {"first read", written, never, {}, written.addSecs(180), 3, Refreshed},
        {"beyond the limit", written, same, now.addSecs(-181), now, 3, Old, 181},
        {"a record of the future", written, same, now.addSecs(181), now, 3, Old, 181},
        {"a clock as wrong as the stop is long", written, same, now, now, 3, Old, 3600, 3600},
        {"no minutes allowed", written, same, now, now, 0, Unchanged},
        {"a limit that is no number", written, same, now, now, kNan, Old},
        {"the hour after summer time", written, same, summer, winter, 3, Unchanged, 120},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        const StationFileVerdict verdict =
            judgeStationFile(row.modified, row.last, row.record, row.now, row.timeout, row.since);
        EXPECT_EQ(verdict.state, row.state);
        EXPECT_EQ(verdict.ageSeconds, row.age);
    }
    // A record that was never read is too old whatever the limit.
    EXPECT_EQ(judgeStationFile(written, same, {}, now, 1e12).state, Old);
}

struct StationFileCheck : testing::Test {
    StationFileCheck() {
        controls.HTMFile.Caption = path;
        controls.TimeoutREAD.Value = 3;
        units.DateFormat.Index = 0;
    }
    void writeNow() const {
        QByteArray page = "<table>";
        for (const auto& [name, value] : {std::pair{u"Date"_s, u"dd/MM/yyyy"_s},
                                          {u"Time"_s, u"hh:mm:ss"_s},
                                          {u"WindSpeed"_s, u"'5'"_s}})
            page +=
                u"<tr><td>%1</td><td></td><td>%2</td></tr>"_s.arg(name, clock.now().toString(value))
                    .toUtf8();
        folder.write(u"Station.htm"_s, page + "</table>");
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.setFileTime(clock.now(), QFileDevice::FileModificationTime));
    }
    StationObservation look() { return observeStation(controls, units, {}, clock, memory); }

    ManualClock clock;
    TestFolder folder;
    const QString path = folder.filePath(u"Station.htm"_s);
    StationFileControls controls;
    UnitControls units;
    StationFileMemory memory;
};

TEST_F(StationFileCheck, FromMissingToFreshToOldAndBack) {
    const auto expect = [this](StationFileState file, SourceState state, double age = 0) {
        const StationObservation seen = look();
        EXPECT_EQ(seen.file, file);
        EXPECT_EQ(seen.state, state);
        EXPECT_NEAR(seen.ageSeconds, age, 1e-6);
        EXPECT_EQ(seen.usable(), seen.numbers[Quantity::Wind].has_value());
        EXPECT_EQ(seen.faulty(), state != SourceState::Ok);
    };
    expect(Missing, SourceState::Absent);
    writeNow();
    expect(Refreshed, SourceState::Ok);
    clock.advanceMs(119'500);
    expect(Unchanged, SourceState::Ok, 119.5);
    clock.advanceMs(60'600);
    expect(Old, SourceState::Old, 180.1);
    writeNow();
    expect(Refreshed, SourceState::Ok);
    ASSERT_TRUE(QFile::remove(path));
    expect(Missing, SourceState::Absent);
}

TEST_F(StationFileCheck, TheNameIsFoundWithoutRegardToCaseAndAFolderIsNoFile) {
    writeNow();
    controls.HTMFile.Caption = folder.filePath(u"STATION.HTM"_s);
    EXPECT_TRUE(look().usable());
    for (const QString& name : {folder.path(), QString(), folder.filePath(u"other.htm"_s)}) {
        controls.HTMFile.Caption = name;
        EXPECT_EQ(look().state, SourceState::Absent) << qPrintable(name);
    }
    // What is there and says nothing of use is as good as old for its alarm.
    controls.HTMFile.Caption = folder.write(u"empty.htm"_s);
    EXPECT_EQ(look().state, SourceState::Unusable);
    EXPECT_EQ(look().alarmState(), Old);
}

} // namespace

} // namespace skyhold
