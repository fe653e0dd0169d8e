#include "conditions/staleness.h"

#include "monitor.h"

#include <QFile>
#include <QTemporaryDir>

#include <limits>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

TEST(StationFile, Judgement) {
    const QDateTime written(QDate(2026, 11, 16), QTime(21, 0, 0, 250));
    const QDateTime now(QDate(2026, 11, 16), QTime(22, 0));
    const QString same = fileTimeText(written);
    const QString other = fileTimeText(written.addMSecs(-1));
    const QDateTime summer(QDate(2026, 10, 25), QTime(2, 59), Qt::OffsetFromUTC, 7200);
    const QDateTime winter(QDate(2026, 10, 25), QTime(2, 1), Qt::OffsetFromUTC, 3600);
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    const struct {
        const char* what;
        QDateTime modified;
        QString last;
        QDateTime record;
        QDateTime now;
        double timeout;
        StationFileState state;
        double age;
    } rows[] = {
        {"no file", {}, same, now, now, 3, StationFileState::Missing, 0},
        {"no file, never read", {}, {}, now, now, 3, StationFileState::Missing, 0},
        {"never read", written, {}, {}, now, 3, StationFileState::Refreshed, 0},
        {"rewritten a millisecond later",
         written,
         other,
         {},
         now,
         3,
         StationFileState::Refreshed,
         0},
        {"at the limit", written, same, now.addSecs(-180), now, 3, StationFileState::Unchanged,
         180},
        {"left behind before the session",
         written,
         neverReadFileTime(),
         {},
         written.addSecs(181),
         3,
         StationFileState::Old,
         181},
        {"first read",
         written,
         neverReadFileTime(),
         {},
         written.addSecs(180),
         3,
         StationFileState::Refreshed,
         0},
        {"beyond the limit", written, same, now.addSecs(-181), now, 3, StationFileState::Old, 181},
        {"a record of the future", written, same, now.addSecs(181), now, 3, StationFileState::Old,
         181},
        {"no minutes allowed", written, same, now, now, 0, StationFileState::Unchanged, 0},
        {"a limit that is no number", written, same, now, now, kNan, StationFileState::Old, 0},
        {"the hour after summer time", written, same, summer, winter, 3,
         StationFileState::Unchanged, 120},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        const StationFileVerdict verdict =
            judgeStationFile(row.modified, row.last, row.record, row.now, row.timeout);
        EXPECT_EQ(verdict.state, row.state);
        EXPECT_EQ(verdict.ageSeconds, row.age);
    }
    // A record that was never read is too old whatever the limit.
    EXPECT_EQ(judgeStationFile(written, same, {}, now, 1e12).state, StationFileState::Old);
}

struct StationFileCheck : testing::Test {
    StationFileCheck() {
        path = folder.filePath(u"Station.htm"_s);
        controls.HTMFile.Caption = path;
        controls.TimeoutREAD.Value = 3;
        readings.StationDateTime = clock.now();
    }
    void write(const QDateTime& time) const {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("<table></table>");
        file.flush(); // a later write would change the time again
        ASSERT_TRUE(file.setFileTime(time, QFileDevice::FileModificationTime));
    }
    // Checks, and leaves the file as read when its data is fresh. The alarm sees the health flags
    // of this check and the codes of the last one.
    bool check() {
        const QString codes = session.Statusbar2.Caption;
        const bool fresh = CheckStationStaleness(
            controls, readings, display, session, clock.now(), [&](StationFileState state) {
                alarms.append(state);
                expectFlags(state == StationFileState::Missing,
                            state == StationFileState::Missing || state == StationFileState::Old);
                EXPECT_EQ(session.Statusbar2.Caption.value(), codes);
            });
        if (fresh)
            readings.LastFileTime = fileTimeText(stationFileTime(path));
        return fresh;
    }
    void expectShown(const QString& status, Colour colour, const QString& code,
                     const QString& alarm, Colour led) const {
        EXPECT_EQ(session.Statusbar1.Caption.value(), status);
        EXPECT_EQ(session.Statusbar1.ForeColor.value(), colour);
        EXPECT_EQ(session.Statusbar2.Caption.value(), code);
        EXPECT_EQ(session.Statusbar2.ForeColor.value(), kRed);
        EXPECT_EQ(display.WSAlarmMsg.Caption.value(), alarm);
        EXPECT_EQ(readings.ReadLedColour, led);
    }
    void expectFlags(bool missing, bool old) const {
        EXPECT_EQ(readings.StationFileMissing, missing);
        EXPECT_EQ(readings.StationDataOld, old);
    }

    ManualClock clock;
    QTemporaryDir folder;
    QString path;
    StationFileControls controls;
    CurrentReadings readings;
    ReadingDisplay display;
    SessionControls session;
    QList<StationFileState> alarms; // what the alarm was told
};

TEST_F(StationFileCheck, FromMissingToFreshToOldAndBack) {
    session.Statusbar2.Caption = u"d11"_s;
    EXPECT_FALSE(check());
    expectFlags(true, true);
    expectShown(u"Weather Station Data - file not available"_s, kRed, u"a42"_s,
                u"WS data file absent"_s, kYellow);

    write(clock.now());
    EXPECT_TRUE(check());
    expectFlags(false, false);
    expectShown(u"Weather Station Data - Refreshed"_s, kNavy, {}, {}, kGreen);

    clock.advanceMs(119'500);
    EXPECT_TRUE(check());
    expectFlags(false, false);
    expectShown(u"Weather Station Data - 120s old"_s, kNavy, {}, {}, kGreen);

    clock.advanceMs(60'600);
    EXPECT_FALSE(check());
    expectFlags(false, true);
    expectShown(u"Weather Station Data too old - 180s old"_s, kRed, u"a41"_s, u"WS data too old"_s,
                kYellow);

    write(clock.now());
    EXPECT_TRUE(check());
    expectFlags(false, false);
    expectShown(u"Weather Station Data - Refreshed"_s, kNavy, {}, {}, kGreen);

    readings.StationDateTime = {};
    EXPECT_FALSE(check());
    expectFlags(false, true);
    EXPECT_EQ(session.Statusbar2.Caption.value(), u"a41"_s);

    ASSERT_TRUE(QFile::remove(path));
    EXPECT_FALSE(check());
    expectFlags(true, true);
    EXPECT_EQ(session.Statusbar2.Caption.value(), u"a42"_s);

    using enum StationFileState;
    EXPECT_EQ(alarms, (QList{Missing, Refreshed, Unchanged, Old, Refreshed, Old, Missing}));
}

TEST_F(StationFileCheck, TheNameIsFoundWithoutRegardToCaseAndAFolderIsNoFile) {
    write(clock.now());
    controls.HTMFile.Caption = folder.filePath(u"STATION.HTM"_s);
    EXPECT_TRUE(check());

    for (const QString& name : {folder.path(), QString(), folder.filePath(u"other.htm"_s)}) {
        SCOPED_TRACE(qPrintable(name));
        controls.HTMFile.Caption = name;
        EXPECT_FALSE(check());
        expectFlags(true, true);
    }
}

} // namespace

} // namespace skyhold
