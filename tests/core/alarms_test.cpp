#include "core/alarms.h"

#include "core/clients.h"
#include "support/core_fixture.h"

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

// Rain, station and sensor program have alarms with the sounds "rain", "station" and "sensor".
class CoreAlarms : public CoreFixture {
  protected:
    CoreAlarms() {
        give(records().alarms.AlarmRain[2], u"rain"_s);
        give(records().alarms.AlarmWS, u"station"_s);
        give(records().alarms.AlarmNB, u"sensor"_s);
    }

    void give(CheckBox& box, const QString& name) {
        box.Tag = sound(name);
        box.set(1);
    }

    QString sound(const QString& name) {
        QFile file(folder_->filePath(name + u".wav"_s));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        return file.fileName();
    }

    void rainCycle(int level) {
        sensor_.values[u"Condition_Rain"_s] = level;
        cycle();
    }

    // A cycle without a new station file.
    void cycleWithoutStation(int seconds = 10) {
        clock_.advanceSeconds(seconds);
        RunReadCycle(*core_);
    }

    QString id() { return records().readings.AlarmSoundId; }
    bool stopOffered() { return records().alarms.ButtStopAlarm.Visible; }
};

TEST_F(CoreAlarms, soundsWithTheVerdictAndEndsWithIt) {
    StartSession(*core_);
    media_.heard();
    rainCycle(3);
    EXPECT_EQ(media_.heard(), u"rain"_s);
    EXPECT_EQ(id(), u"R2"_s);
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
    EXPECT_EQ(media_.heard(), QString());
    rainCycle(1);
    EXPECT_EQ(media_.heard(), u"-"_s);
    EXPECT_EQ(id(), QString());
}

TEST_F(CoreAlarms, endOfSessionAndLocalControlSilenceAndRelease) {
    const struct {
        const char* what;
        std::function<void()> act;
    } cases[] = {
        {"stop",
         [this] {
             StopSession(*core_);
         }},
        {"local control",
         [this] {
             HasControl(*core_, true, u"dome script"_s);
         }},
    };
    for (const auto& [what, act] : cases) {
        SCOPED_TRACE(what);
        StartSession(*core_);
        rainCycle(3);
        EXPECT_EQ(media_.heard(), u"rain"_s);
        act();
        EXPECT_EQ(media_.heard(), u"-"_s);
        EXPECT_EQ(id(), QString());
        EXPECT_FALSE(stopOffered());
        EXPECT_FALSE(core_->TimerPlayer.enabled());
    }
    // Another program decides: no condition alarm.
    rainCycle(3);
    EXPECT_EQ(media_.heard(), QString());
    HasControl(*core_, false, {});
    rainCycle(3);
    EXPECT_EQ(media_.heard(), u"rain"_s);
}

TEST_F(CoreAlarms, stopButtonSilencesAndSuspensionIsAClickRule) {
    StartSession(*core_);
    rainCycle(3);
    AlarmStop(*core_);
    media_.heard();
    rainCycle(3);
    EXPECT_EQ(media_.heard(), QString());
    records().alarms.SuspendSoundAlarm.set(1);
    EXPECT_EQ(media_.heard(), u"-"_s);
    records().alarms.SuspendSoundAlarm.set(0);
    EXPECT_EQ(id(), QString());
    rainCycle(3);
    EXPECT_EQ(media_.heard(), u"rain"_s);
}

TEST_F(CoreAlarms, automationSoundsWithoutASessionAndWithoutAnOwner) {
    AlarmStart(*core_, sound(u"called"_s) + u"|repeat"_s);
    EXPECT_TRUE(media_.commands.last().endsWith(u" repeat"_s));
    EXPECT_EQ(media_.heard(), u"called"_s);
    EXPECT_TRUE(stopOffered());
    EXPECT_EQ(id(), QString());
    AlarmStop(*core_);
    EXPECT_EQ(media_.heard(), u"-"_s);
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
    EXPECT_EQ(media_.heard(), u"sensor"_s);
    EXPECT_EQ(id(), u"20"_s);
    EXPECT_EQ(codes(), u"a31"_s);

    // Its own condition alarms wait, and nothing is started twice.
    rainCycle(3);
    EXPECT_EQ(media_.heard(), QString());
    EXPECT_EQ(sensor_.takeCalls().count(u"Kiv_AlarmStop"_s), 0);

    // With the sensor program back the rain is heard.
    sensor_.values[u"DeviceIsRunning"_s] = true;
    rainCycle(3);
    EXPECT_EQ(media_.heard(), u"rain"_s);
    EXPECT_EQ(codes(), QString());
}

TEST_F(CoreAlarms, aSensorProgramThatDoesNotAnswerSoundsToo) {
    StartSession(*core_);
    media_.heard();
    sensor_.answering = false;
    cycle();
    EXPECT_EQ(media_.heard(), u"sensor"_s);
    EXPECT_EQ(id(), u"20"_s);
    sensor_.answering = true;
    cycle();
    EXPECT_EQ(media_.heard(), u"-"_s);
    EXPECT_EQ(id(), QString());
    EXPECT_EQ(codes(), QString());
}

TEST_F(CoreAlarms, stationDataThatCannotBeUsedSoundsUntilItIsFresh) {
    StartSession(*core_);
    const auto letItAge = [this] {
        clock_.advanceSeconds(600);
    };
    const struct {
        const char* what;
        std::function<void()> fail;
        QString code;
        bool sensorStopped;
    } cases[] = {
        {"not rewritten", letItAge, u"a41"_s, true},
        {"deleted", [this] { QFile::remove(stationPath()); }, u"a42"_s, false},
        {"rewritten with rubbish", [this] { writeStationBytes("rubbish"); }, u"a41"_s, true},
    };
    for (const auto& [what, fail, code, sensorStopped] : cases) {
        SCOPED_TRACE(what);
        fail();
        media_.heard();
        sensor_.takeCalls();
        cycleWithoutStation();
        EXPECT_EQ(media_.heard(), u"station"_s);
        EXPECT_EQ(sensor_.takeCalls().contains(u"Kiv_AlarmStop"_s), sensorStopped);
        EXPECT_EQ(id(), u"10"_s);
        EXPECT_EQ(codes(), code);

        // Acknowledged, and it stays so, even when the same trouble is written again.
        AlarmStop(*core_);
        fail();
        media_.heard();
        cycleWithoutStation();
        EXPECT_EQ(media_.heard(), QString());

        cycle();
        EXPECT_EQ(media_.heard(), u"-"_s);
        EXPECT_EQ(id(), QString());
        EXPECT_EQ(codes(), QString());
    }
}

TEST_F(CoreAlarms, aStationFileThatIsRewrittenLetsTheConditionSoundAgain) {
    StartSession(*core_);
    rainCycle(3);
    clock_.advanceSeconds(600);
    cycleWithoutStation();
    EXPECT_EQ(media_.heard(), u"station"_s);
    rainCycle(3);
    EXPECT_EQ(media_.heard(), u"rain"_s);
    EXPECT_EQ(id(), u"R2"_s);
}

} // namespace
} // namespace skyhold
