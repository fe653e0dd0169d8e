// How an alarm is started and stopped, and the alarms of the two sources.
#include "alarm_fixture.h"

namespace skyhold {

namespace {

using AlarmSounds = AlarmFixture;

TEST_F(AlarmSounds, StartAndStopSendTheirCommands) {
    const QString plain = sound(u"bell"_s);
    const QString blanks = sound(u"two words|2"_s);
    const QString once = u"play KivNubiloPlayer from 0"_s;
    const QString repeated = once + u" repeat"_s;
    const QStringList silence{u"stop KivNubiloPlayer"_s, u"close KivNubiloPlayer"_s};
    const auto open = [](const QString& path) {
        return u"open "_s + path + u" type MPEGVideo alias KivNubiloPlayer"_s;
    };
    const struct {
        QString spec;
        int openResult;
        QStringList commands; // after the silence
        bool started;
    } rows[] = {
        {plain, 0, {open(plain), once}, true},
        {plain + u"|repeat"_s, 0, {open(plain), repeated}, true},
        {plain + u"|"_s, 0, {open(plain), repeated}, true},
        {blanks + u"|once"_s, 0, {open(u'"' + blanks + u'"'), repeated}, true},
        {blanks, 0, {}, false}, // the name ends at the bar
        {plain, 263, {open(plain)}, false},
        {folder.filePath(u"missing.wav"_s), 0, {}, false},
        {folder.path(), 0, {}, false},
        {QString(), 0, {}, false},
        {u"|repeat"_s, 0, {}, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(qPrintable(row.spec));
        media.openResult = row.openResult;
        readings.AlarmSoundId = u"R2"_s;
        const auto expect = [this](const QStringList& commands, bool started) {
            EXPECT_EQ(std::exchange(media.commands, {}), commands);
            EXPECT_EQ(timer.enabled(), started);
            EXPECT_EQ(alarms.ButtStopAlarm.Visible, started);
            EXPECT_EQ(lit(), -1);
        };
        ShowPlayingAlarm(alarms, u"R2"_s);
        AlarmStart(player, row.spec);
        expect(silence + row.commands, row.started);
        EXPECT_EQ(timer.interval(), row.started ? 500 : 0);
        ShowPlayingAlarm(alarms, u"R2"_s);
        AlarmStop(player);
        expect(silence, false);
        EXPECT_EQ(readings.AlarmSoundId, u"R2"_s);
    }
}

TEST_F(AlarmSounds, TimerNoticesTheEndOfTheSound) {
    const struct {
        QString mode;
        int result;
        bool goesOn;
    } rows[] = {{u"playing"_s, 0, true}, {u"playing on"_s, 0, true}, {u"stopped"_s, 0, false},
                {u"play"_s, 0, false},   {QString(), 0, false},      {u"playing"_s, 1, false},
                {u"Playing"_s, 0, false}};
    for (const auto& row : rows) {
        SCOPED_TRACE(qPrintable(row.mode));
        AlarmStart(player, sound(u"bell"_s));
        readings.AlarmSoundId = u"R2"_s;
        ShowPlayingAlarm(alarms, u"R2"_s);
        media.commands.clear();
        media.mode = row.mode;
        media.statusResult = row.result;
        TimerPlayer_Tick(player);
        EXPECT_EQ(media.commands, QStringList{u"status KivNubiloPlayer mode"_s});
        EXPECT_EQ(timer.enabled(), row.goesOn);
        EXPECT_EQ(alarms.ButtStopAlarm.Visible, row.goesOn);
        EXPECT_EQ(lit(), 1);
        EXPECT_EQ(readings.AlarmSoundId, u"R2"_s);
    }
}

TEST_F(AlarmSounds, OfTheSources) {
    using Stop = std::function<void()>;
    using Event = std::function<void(const Stop& stopSensorAlarm)>;
    const auto station = [this](StationFileState state) -> Event {
        return [this, state](const Stop& stop) {
            StationDataAlarm(state, player, readings, stop);
        };
    };
    const auto sensor = [this](bool failed) -> Event {
        return [this, failed](const Stop& stop) {
            SensorFailureAlarm(failed, player, readings, stop);
        };
    };
    const Event old = station(StationFileState::Old);
    const Event missing = station(StationFileState::Missing);
    const Event unchanged = station(StationFileState::Unchanged);
    const Event rewritten = station(StationFileState::Refreshed);
    const Event failed = sensor(true);
    const Event well = sensor(false);
    const struct {
        const char* what;
        const Event& event;
        bool ticked, hasSound;
        QString owner, heard;
        bool sensorStopped;
        QString id;
        int lit;
    } rows[] = {
        {"too old", old, true, true, {}, u"its"_s, true, u"10"_s, 8},
        {"too old, replaces a condition", old, true, true, u"C2"_s, u"its"_s, true, u"10"_s, 8},
        {"too old, replaces the sensor's", old, true, true, u"20"_s, u"its"_s, true, u"10"_s, 8},
        {"still too old", old, true, true, u"10"_s, {}, false, u"10"_s, 8},
        {"old, not ticked", old, false, true, u"C2"_s, {}, false, u"C2"_s, 0},
        {"old, no sound", old, true, false, {}, {}, false, {}, -1},
        {"missing", missing, true, true, {}, u"its"_s, false, u"10"_s, 8},
        {"still missing", missing, true, true, u"10"_s, {}, false, u"10"_s, 8},
        {"missing, not ticked", missing, false, true, {}, {}, false, {}, -1},
        {"missing, no sound", missing, true, false, u"C2"_s, u"-"_s, false, u"10"_s, 8},
        {"recent, not rewritten", unchanged, true, true, u"10"_s, u"-"_s, false, u"10"_s, -1},
        {"recent, not its alarm", unchanged, true, true, u"20"_s, {}, false, u"20"_s, 9},
        {"rewritten", rewritten, true, true, u"10"_s, u"-"_s, false, {}, -1},
        {"rewritten, not its alarm", rewritten, true, true, u"R2"_s, {}, false, u"R2"_s, 1},
        {"failed", failed, true, true, u"10"_s, u"its"_s, true, u"20"_s, 9},
        {"still failed", failed, true, true, u"20"_s, {}, false, u"20"_s, 9},
        {"failed, not ticked", failed, false, true, {}, {}, false, {}, -1},
        {"failed, no sound", failed, true, false, {}, {}, false, {}, -1},
        {"well again", well, true, true, u"20"_s, u"-"_s, false, {}, -1},
        {"well", well, true, true, u"R2"_s, {}, false, u"R2"_s, 1},
    };
    alarms.SuspendSoundAlarm.Value = 1; // concerns the condition alarms alone
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        for (CheckBox* box : {&alarms.AlarmWS, &alarms.AlarmNB}) {
            box->Value = row.ticked;
            box->Tag = row.hasSound ? sound(u"its"_s) : QString();
        }
        readings.AlarmSoundId = row.owner;
        ShowPlayingAlarm(alarms, row.owner);
        bool sensorStopped = false;
        row.event([&] {
            sensorStopped = true;
            EXPECT_TRUE(media.commands.isEmpty()) << "first the sensor program's own alarm";
        });
        EXPECT_EQ(sensorStopped, row.sensorStopped);
        EXPECT_EQ(readings.AlarmSoundId, row.id);
        EXPECT_EQ(lit(), row.lit);
        EXPECT_EQ(media.heard(), row.heard);
    }
}

TEST_F(AlarmSounds, EditingASoundReleasesTheAlarmAndNeedsTheRightButton) {
    const struct {
        const char* what;
        QString tag;
        int button;
        QString tagAfter;
        int value;
        QString id;
    } rows[] = {
        {"left", u"/a.wav"_s, 1, u"/a.wav"_s, 1, u"R2"_s},
        {"left, without a sound", {}, 1, {}, 0, u"R2"_s},
        {"right, a sound", u"/a.wav"_s, 2, u"/b.wav"_s, 1, {}},
        {"right, cleared", u"/a.wav"_s, 2, {}, 0, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        CheckBox box;
        box.Tag = row.tag;
        box.Value = 1;
        readings.AlarmSoundId = u"R2"_s;
        bool opened = false;
        EditAlarmSound(row.button, box, readings, [&](CheckBox& edited) {
            opened = true;
            EXPECT_EQ(readings.AlarmSoundId, u"R2"_s);
            edited.Tag = row.tagAfter;
        });
        EXPECT_EQ(opened, row.button == 2);
        EXPECT_EQ(box.Value, row.value);
        EXPECT_EQ(readings.AlarmSoundId, row.id);
    }
}

} // namespace

} // namespace skyhold
