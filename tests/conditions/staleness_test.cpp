#include "conditions/staleness.h"

#include "monitor.h"
#include "support/test_folder.h"

namespace skyhold {

namespace {

using enum StationFileState;

TEST(StationFile, Judgement) {
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
        readings.StationDateTime = clock.now();
    }
    void writeNow() const {
        folder.write(u"Station.htm"_s, "<table></table>");
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.setFileTime(clock.now(), QFileDevice::FileModificationTime));
    }
    // Checks, and leaves the file as read when its data is fresh. The alarm sees the health flags
    // of this check and the codes of the last one.
    bool check() {
        const QString codes = session.Statusbar2.Caption;
        const bool fresh = CheckStationStaleness(
            controls, readings, display, session, clock, [&](StationFileState state) {
                EXPECT_EQ(readings.StationFileMissing, state == Missing);
                EXPECT_EQ(readings.StationDataOld, state == Missing || state == Old);
                EXPECT_EQ(session.Statusbar2.Caption.value(), codes);
                judged = state;
            });
        if (fresh)
            readings.LastFileTime = fileTimeText(stationFileTime(path));
        return fresh;
    }

    ManualClock clock;
    TestFolder folder;
    const QString path = folder.filePath(u"Station.htm"_s);
    StationFileControls controls;
    CurrentReadings readings;
    ReadingDisplay display;
    SessionControls session;
    StationFileState judged{}; // what the alarm was told
};

TEST_F(StationFileCheck, FromMissingToFreshToOldAndBack) {
    session.Statusbar2.Caption = u"d11"_s;
    const auto expect = [this](StationFileState state, const QString& status, const QString& code,
                               const QString& alarm) {
        SCOPED_TRACE(qPrintable(status));
        const bool fresh = state == Refreshed || state == Unchanged;
        EXPECT_EQ(check(), fresh);
        EXPECT_EQ(judged, state);
        EXPECT_EQ(readings.StationFileMissing, state == Missing);
        EXPECT_EQ(readings.StationDataOld, !fresh);
        EXPECT_EQ(session.Statusbar1.Caption.value(), u"Weather Station Data "_s + status);
        EXPECT_EQ(session.Statusbar1.ForeColor.value(), fresh ? kNavy : kRed);
        EXPECT_EQ(session.Statusbar2.Caption.value(), code);
        EXPECT_EQ(session.Statusbar2.ForeColor.value(), kRed);
        EXPECT_EQ(display.WSAlarmMsg.Caption.value(), alarm);
        EXPECT_EQ(readings.ReadLedColour, fresh ? kGreen : kYellow);
    };
    expect(Missing, u"- file not available"_s, u"a42"_s, u"WS data file absent"_s);
    writeNow();
    expect(Refreshed, u"- Refreshed"_s, {}, {});
    clock.advanceMs(119'500);
    expect(Unchanged, u"- 120s old"_s, {}, {});
    clock.advanceMs(60'600);
    expect(Old, u"too old - 180s old"_s, u"a41"_s, u"WS data too old"_s);
    writeNow();
    expect(Refreshed, u"- Refreshed"_s, {}, {});
    readings.StationDateTime = {};
    EXPECT_FALSE(check());
    EXPECT_EQ(judged, Old);
    ASSERT_TRUE(QFile::remove(path));
    expect(Missing, u"- file not available"_s, u"a42"_s, u"WS data file absent"_s);
}

TEST_F(StationFileCheck, TheNameIsFoundWithoutRegardToCaseAndAFolderIsNoFile) {
    writeNow();
    controls.HTMFile.Caption = folder.filePath(u"STATION.HTM"_s);
    EXPECT_TRUE(check());
    for (const QString& name : {folder.path(), QString(), folder.filePath(u"other.htm"_s)}) {
        controls.HTMFile.Caption = name;
        EXPECT_FALSE(check()) << qPrintable(name);
        EXPECT_EQ(judged, Missing);
    }
}

} // namespace

} // namespace skyhold
