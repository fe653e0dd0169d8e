#include "core/alarms.h"

#include "core/clients.h"
#include "support/core_fixture.h"

namespace skyhold {
namespace {

// Rain, station and sensor program have alarms with the sounds "rain", "station" and "sensor".
class CoreAlarms : public CoreFixture {
  protected:
    CoreAlarms() {
        AlarmControls& alarms = records().alarms;
        for (const auto& [box, name] : {std::pair{&alarms.Alarm[Quantity::Rain][2], u"rain"_s},
                                        {&alarms.AlarmWS, u"station"_s},
                                        {&alarms.AlarmNB, u"sensor"_s}}) {
            box->Tag = sound(name);
            box->set(1);
        }
    }
    QString sound(const QString& name) { return folder_->write(name + u".wav"_s); }

    // What was heard since it was asked last, and the alarm that owns the sound.
    void expect(const QString& heard, const QString& id) {
        EXPECT_EQ(media_.heard(), heard);
        EXPECT_EQ(records().readings.AlarmSoundId, id);
    }
    bool stopOffered() { return records().alarms.ButtStopAlarm.Visible; }
};

TEST_F(CoreAlarms, soundsWithTheVerdictAndEndsWithIt) {
    StartSession(*core_);
    media_.heard();
    rainCycle(3);
    expect(u"rain"_s, u"R2"_s);
    EXPECT_TRUE(stopOffered());
    EXPECT_TRUE(core_->TimerPlayer.enabled());
    core_->TimerPlayer.Tick();
    EXPECT_TRUE(stopOffered());
    media_.mode = u"stopped"_s;
    core_->TimerPlayer.Tick();
    EXPECT_FALSE(stopOffered());
    EXPECT_FALSE(core_->TimerPlayer.enabled());
    media_.heard();
    rainCycle(3);
    expect({}, u"R2"_s);
    rainCycle(1);
    expect(u"-"_s, {});
}

TEST_F(CoreAlarms, endOfSessionAndLocalControlSilenceAndRelease) {
    for (const bool local : {false, true}) {
        SCOPED_TRACE(local);
        StartSession(*core_);
        rainCycle(3);
        expect(u"rain"_s, u"R2"_s);
        local ? HasControl(*core_, true, u"dome script"_s) : StopSession(*core_);
        expect(u"-"_s, {});
        EXPECT_FALSE(stopOffered());
        EXPECT_FALSE(core_->TimerPlayer.enabled());
    }
    // Another program decides: no condition alarm.
    rainCycle(3);
    expect({}, {});
    HasControl(*core_, false, {});
    rainCycle(3);
    expect(u"rain"_s, u"R2"_s);
}

TEST_F(CoreAlarms, stopButtonSilencesAndSuspensionIsAClickRule) {
    StartSession(*core_);
    rainCycle(3);
    stopAlarm(*core_);
    media_.heard();
    rainCycle(3);
    expect({}, u"R2"_s);
    records().alarms.SuspendSoundAlarm.set(1);
    expect(u"-"_s, u"R2"_s);
    records().alarms.SuspendSoundAlarm.set(0);
    expect({}, {});
    rainCycle(3);
    expect(u"rain"_s, u"R2"_s);
}

TEST_F(CoreAlarms, automationSoundsWithoutASessionAndWithoutAnOwner) {
    startAlarm(*core_, sound(u"called"_s) + u"|repeat"_s);
    EXPECT_TRUE(media_.commands.last().endsWith(u" repeat"_s));
    expect(u"called"_s, {});
    EXPECT_TRUE(stopOffered());
    stopAlarm(*core_);
    expect(u"-"_s, {});
    EXPECT_FALSE(stopOffered());
}

TEST_F(CoreAlarms, sensorFailureSilencesTheSensorProgramAndSoundsWhileItLasts) {
    StartSession(*core_);
    sensor_.values[u"DeviceIsRunning"_s] = false;
    media_.heard();
    sensor_.takeCalls();
    cycle();
    const QStringList calls = sensor_.takeCalls();
    EXPECT_EQ(calls.count(u"Kiv_AlarmStop"_s), 1);
    EXPECT_EQ(calls.indexOf(u"Kiv_AlarmStop"_s), calls.indexOf(u"Kiv_XFERFileErr"_s) + 1);
    expect(u"sensor"_s, u"20"_s);
    EXPECT_EQ(codes(), u"a31"_s);

    // Its own condition alarms wait, and nothing is started twice.
    rainCycle(3);
    expect({}, u"20"_s);
    EXPECT_EQ(sensor_.takeCalls().count(u"Kiv_AlarmStop"_s), 0);

    // With the sensor program back the rain is heard.
    sensor_.values[u"DeviceIsRunning"_s] = true;
    rainCycle(3);
    expect(u"rain"_s, u"R2"_s);
    EXPECT_EQ(codes(), QString());

    // One that does not answer sounds too.
    sensor_.answering = false;
    rainCycle(1);
    expect(u"sensor"_s, u"20"_s);
    sensor_.answering = true;
    cycle();
    expect({}, u"20"_s);
    cycle();
    expect(u"-"_s, {});
}

TEST_F(CoreAlarms, stationDataThatCannotBeUsedSoundsUntilItIsFresh) {
    StartSession(*core_);
    const struct {
        const char* what;
        std::function<void()> fail;
        QString code, message;
        bool sensorStopped;
    } cases[] = {
        {"not rewritten", [this] { clock_.advanceSeconds(600); }, u"a41"_s, u"WS data too old"_s,
         true},
        {"deleted", [this] { QFile::remove(stationPath()); }, u"a42"_s, u"WS data file absent"_s,
         false},
        {"rubbish", [this] { writeStationBytes("rubbish"); }, u"a41"_s, u"WS data file unusable"_s,
         true},
    };
    for (const auto& [what, fail, code, message, sensorStopped] : cases) {
        SCOPED_TRACE(what);
        fail();
        media_.heard();
        sensor_.takeCalls();
        cycleWithoutStation();
        expect(u"station"_s, u"10"_s);
        EXPECT_EQ(sensor_.takeCalls().contains(u"Kiv_AlarmStop"_s), sensorStopped);
        EXPECT_EQ(codes(), code);
        EXPECT_EQ(records().display.WSAlarmMsg.Caption.value(), message);

        // Acknowledged, and it stays so, even when the same trouble is written again.
        stopAlarm(*core_);
        fail();
        media_.heard();
        cycleWithoutStation();
        expect({}, u"10"_s);
        cycle();
        expect(u"-"_s, {});
        EXPECT_EQ(codes(), QString());
    }
    // A file that is rewritten lets the condition sound again.
    rainCycle(3);
    cycleWithoutStation(600);
    expect(u"station"_s, u"10"_s);
    rainCycle(3);
    expect(u"rain"_s, u"R2"_s);
}

} // namespace
} // namespace skyhold
