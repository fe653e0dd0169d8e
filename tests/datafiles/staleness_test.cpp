#include "datafiles/staleness.h"

#include "datafiles/station_file.h"
#include "support/manual_clock.h"
#include "support/test_folder.h"

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

using enum StationFileState;

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
        {"a limit that is no number", written, same, now, now, qQNaN(), Old},
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
    expect(SourceState::Absent, Missing, 0, Missing);
    writeNow();
    expect(SourceState::Ok, Refreshed, 0, Refreshed);
    clock.advanceMs(119'500);
    expect(SourceState::Ok, Unchanged, 119.5, Unchanged);
    clock.advanceMs(60'600);
    expect(SourceState::Old, Old, 180.1, Old);
    writeNow();
    expect(SourceState::Ok, Refreshed, 0, Refreshed);
    // The records that a station writes after it stopped come of age by themselves.
    memory.recordTime = clock.now().addSecs(180);
    clock.advanceSeconds(181);
    expect(SourceState::Old, Old, 181, Old);
    ASSERT_TRUE(QFile::remove(path));
    expect(SourceState::Absent, Missing, 0, Missing);
    writeNow();
    memory.reset();
    expect(SourceState::Ok, Refreshed, 0, Refreshed);
    clock.advanceSeconds(1);
    writeNow(u"Soil"_s);
    const StationObservation seen = observe();
    EXPECT_EQ(seen.state, SourceState::Unusable);
    EXPECT_EQ(seen.alarmState(), Old);
    EXPECT_EQ(seen.detail, stationReadStatus(StationRead::NoReadings));
}

TEST_F(Staleness, TheNameIsFoundWithoutRegardToCaseAndAFolderIsNoFile) {
    writeNow();
    controls.HTMFile.Caption = folder.filePath(u"STATION.HTM"_s);
    EXPECT_TRUE(observe().usable());
    for (const QString& name : {folder.path(), QString(), folder.filePath(u"other.htm"_s)}) {
        controls.HTMFile.Caption = name;
        EXPECT_EQ(observe().state, SourceState::Absent) << qPrintable(name);
    }
}

} // namespace

} // namespace skyhold
