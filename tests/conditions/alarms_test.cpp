// SPDX-License-Identifier: GPL-3.0-or-later
#include "conditions/alarms.h"
#include "conditions/rules_of.h"
#include "judge/judge.h"
#include "support/manual_clock.h"
#include "support/scripted_media.h"
#include "support/test_folder.h"

using namespace Qt::Literals::StringLiterals;

namespace skyhold {
namespace {

// A monitor whose alarms are played by a scripted media control, in calm, clear, dry weather.

struct AlarmFixture : testing::Test {
    AlarmFixture() {
        for (const QuantityRow& row : quantityTable()) {
            for (std::size_t i = 0; i < kLevelCount; ++i) {
                controls.Cond[row.quantity][i].Value = row.levels[i].unsafe ? 1 : 0;
                if (row.hasLimits())
                    controls.Limit[row.quantity][i].Value =
                        QByteArray(row.levels[i].limit).toDouble();
            }
        }
        seen.station.state = SourceState::Ok;
        seen.sensor.state = SourceState::Ok;
        for (const Quantity quantity : kAllQuantities)
            setLevel(quantity, 1);
        setLevel(Quantity::Temperature, 2);
        setLevel(Quantity::Dew, 3);
        beginSession({}, memory, {clock.MsClock(), clock.MsClock()});
    }

    // 0 is above the last limit.
    void setLevel(Quantity quantity, std::int32_t level) {
        const auto& limits = controls.Limit[quantity];
        if (!rowOf(quantity).hasLimits())
            seen.givenLevels[quantity] = level;
        else if (level == 0)
            seen.values[quantity] = limits.back().Value + 1;
        else
            seen.values[quantity] = limits[static_cast<std::size_t>(level - 1)].Value;
    }

    // A sound file of that name; its path.
    QString sound(const QString& name) const { return folder.write(name + u".wav"_s); }

    // The one indicator that is lit, or -1.
    int lit() const {
        int found = -1;
        for (int i = 0; i < 10; ++i) {
            if (!alarms.PlayAlarm[static_cast<std::size_t>(i)])
                continue;
            EXPECT_EQ(found, -1) << "two indicators are lit";
            found = i;
        }
        return found;
    }

    ManualClock clock;
    Observation seen;
    ConditionControls controls;
    JudgeMemory memory;
    CurrentReadings readings;
    TestFolder folder;
    AlarmControls alarms;
    ScriptedMedia media;
    Timer timer{clock};
    AlarmPlayer player{media, timer, alarms};
};

// How an alarm is started and stopped, and the alarms of the two sources.

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
        {blanks + u"|once"_s, 0, {open(u'"' + blanks + u'"'), repeated}, true},
        {blanks, 0, {}, false}, // the name ends at the bar
        {plain, 263, {open(plain)}, false},
        {folder.filePath(u"missing.wav"_s), 0, {}, false},
        {QString(), 0, {}, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(qPrintable(row.spec));
        media.openResult = row.openResult;
        readings.AlarmSoundId = u"R2"_s;
        ShowPlayingAlarm(alarms, u"R2"_s);
        AlarmStart(player, row.spec);
        EXPECT_EQ(std::exchange(media.commands, {}), silence + row.commands);
        EXPECT_EQ(timer.interval(), row.started ? 500 : 0);
        EXPECT_EQ(alarms.ButtStopAlarm.Visible, row.started);
        EXPECT_EQ(lit(), -1);
        AlarmStop(player);
        EXPECT_EQ(std::exchange(media.commands, {}), silence);
        EXPECT_FALSE(timer.enabled() || alarms.ButtStopAlarm.Visible);
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
        {"still too old", old, true, true, u"10"_s, {}, false, u"10"_s, 8},
        {"old, not ticked", old, false, true, u"C2"_s, {}, false, u"C2"_s, 0},
        {"old, no sound", old, true, false, {}, {}, false, {}, -1},
        {"missing", missing, true, true, {}, u"its"_s, false, u"10"_s, 8},
        {"missing, not ticked", missing, false, true, {}, {}, false, {}, -1},
        {"missing, no sound", missing, true, false, u"C2"_s, u"-"_s, false, u"10"_s, 8},
        {"recent, not rewritten", unchanged, true, true, u"10"_s, u"-"_s, false, u"10"_s, -1},
        {"rewritten", rewritten, true, true, u"10"_s, u"-"_s, false, {}, -1},
        {"rewritten, not its alarm", rewritten, true, true, u"R2"_s, {}, false, u"R2"_s, 1},
        {"failed", failed, true, true, u"10"_s, u"its"_s, true, u"20"_s, 9},
        {"still failed", failed, true, true, u"20"_s, {}, false, u"20"_s, 9},
        {"failed, not ticked", failed, false, true, {}, {}, false, {}, -1},
        {"failed, no sound", failed, true, false, {}, {}, false, {}, -1},
        {"well again", well, true, true, u"20"_s, u"-"_s, false, {}, -1},
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

// Which condition alarm sounds.

// One cycle of a walk.
struct Step {
    const char* what;
    std::function<void()> act; // before the cycle
    const char* heard;         // in the cycle: a sound, "-" for silence, nothing for no command
    const char* id;            // the alarm that owns the sound after it
};

template <typename Field, typename Value>
std::function<void()> set(Field& field, Value value) {
    return [&field, value] {
        field = value;
    };
}

struct Alarms : AlarmFixture {
    CheckBox& box(const QString& id) { return alarms.Alarm[quantityOf(id)][indexOf(id)]; }

    // Makes the level unsafe and gives it an alarm with a sound of the same name.
    void enable(const QString& id) {
        controls.Cond[quantityOf(id)][indexOf(id)].Value = 1;
        box(id).Tag = sound(id);
        box(id).Value = 1;
    }

    // Ten seconds later: the verdict and, after it, the alarm. What was heard of it.
    std::string cycle() {
        clock.advanceSeconds(10);
        const Rules rules = rulesOf(controls);
        const Judgement judgement = judge(seen, rules, memory, {clock.MsClock(), clock.MsClock()});
        const bool faulty = seen.station.faulty() || seen.sensor.failed();
        soundChosenAlarm(SelectConditionAlarm(judgement, rules, alarmRulesOf(alarms), faulty,
                                              readings.AlarmSoundId),
                         player, readings);
        return media.heard().toStdString();
    }
    void walk(const std::vector<Step>& steps) {
        for (const Step& step : steps) {
            SCOPED_TRACE(step.what);
            step.act();
            EXPECT_EQ(cycle(), step.heard);
            EXPECT_EQ(readings.AlarmSoundId.toStdString(), step.id);
        }
    }

    std::function<void()> to(Quantity quantity, std::int32_t level) {
        return [this, quantity, level] {
            setLevel(quantity, level);
        };
    }
    std::function<void()> rain(std::int32_t level) { return to(Quantity::Rain, level); }
    std::function<void()> cloud(std::int32_t level) { return to(Quantity::Cloud, level); }
    std::function<void()> suspend(int to) {
        return [this, to] {
            alarms.SuspendSoundAlarm.Value = to;
            SuspendSoundAlarm_Click(player, readings);
        };
    }
    static void nothing() {}

    static Quantity quantityOf(const QString& id) { return conditionAlarm(id)->quantity; }
    static std::size_t indexOf(const QString& id) {
        return static_cast<std::size_t>(id[1].digitValue());
    }
};

TEST_F(Alarms, TheFirstOfTheListWins) {
    const QStringList order = u"C R W G P H T D"_s.split(u' ');
    const QList<int> indicators{0, 1, 2, 3, 5, 6, 4, 7};
    for (int index = 0; index < 3; ++index) {
        const QString digit = QString::number(index);
        for (const QString& letter : order) {
            enable(letter + digit);
            setLevel(quantityOf(letter + digit), index + 1);
        }
        // One after another ends; the next in the list takes over.
        for (qsizetype i = 0; i < order.size(); ++i) {
            const QString id = order[i] + digit;
            EXPECT_EQ(cycle(), id.toStdString());
            EXPECT_EQ(readings.AlarmSoundId, id);
            EXPECT_EQ(lit(), indicators[i]);
            EXPECT_EQ(cycle(), "") << qPrintable(id);
            setLevel(quantityOf(id), 0);
        }
        EXPECT_EQ(cycle(), "-");
        EXPECT_EQ(readings.AlarmSoundId, QString());
    }
}

TEST_F(Alarms, AlarmSoundIdWalks) {
    enable(u"C2"_s);
    enable(u"R1"_s);
    enable(u"R2"_s);
    CheckBox& boxR2 = box(u"R2"_s);
    const auto both = [](const std::function<void()>& first, const std::function<void()>& second) {
        return [first, second] {
            first();
            second();
        };
    };
    // Another cause, unsafe without an alarm.
    controls.Cond[Quantity::Humidity][2].Value = 1;
    const auto humid = to(Quantity::Humidity, 3);
    walk({
        {"safe", nothing, "-", ""},
        {"rain", rain(3), "R2", "R2"},
        {"rain stays", nothing, "", "R2"},
        {"overcast is higher", cloud(3), "C2", "C2"},
        {"clear: rain again", cloud(1), "R2", "R2"},
        {"less rain is another alarm", rain(2), "R1", "R1"},
        {"overcast", cloud(3), "C2", "C2"},
        {"a lower one does not interrupt", rain(3), "", "C2"},
        {"clear", cloud(1), "R2", "R2"},
        {"stopped by the user", [this] { AlarmStop(player); }, "-", "R2"},
        {"and not started again", nothing, "", "R2"},
        {"dry", rain(1), "-", ""},
        {"a new rain", rain(3), "R2", "R2"},
        {"its alarm box cleared", set(boxR2.Value, 0), "-", ""},
        {"and ticked", set(boxR2.Value, 1), "R2", "R2"},
        {"humid, and its unsafe box cleared",
         both(humid, set(controls.Cond[Quantity::Rain][2].Value, 0)), "-", ""},
        {"ticked again", set(controls.Cond[Quantity::Rain][2].Value, 1), "R2", "R2"},
        {"its sound taken away", set(boxR2.Tag, QString()), "", "R2"},
        {"dry, the other cause without a sound", rain(1), "-", ""},
        {"an alarm without a sound", rain(3), "-", ""},
        {"old station data owns the sound",
         both(both(set(boxR2.Tag, sound(u"R2"_s)), set(seen.station.state, SourceState::Old)),
              set(readings.AlarmSoundId, u"10"_s)),
         "", "10"},
        {"fresh again, its id left", set(seen.station.state, SourceState::Ok), "R2", "R2"},
        {"the sensor program's failure owns it",
         both(rain(1), set(seen.sensor.state, SourceState::Failed)), "", "R2"},
        {"the sensor program is back", set(seen.sensor.state, SourceState::Ok), "-", ""},
        {"all safe", both(to(Quantity::Humidity, 1), set(readings.AlarmSoundId, u"10"_s)), "-", ""},
        {"a broken sound is not tried again", both(rain(3), set(media.openResult, 1)), "-", "R2"},
        {"even when it is mended", set(media.openResult, 0), "", "R2"},
    });
    EXPECT_EQ(lit(), 1);
}

TEST_F(Alarms, SuspensionSilencesAndItsEndLetsTheAlarmStart) {
    enable(u"R2"_s);
    walk({{"rain", rain(3), "R2", "R2"},
          {"suspended", suspend(1), "-", "R2"},
          {"and silent", nothing, "", "R2"},
          {"no longer", suspend(0), "R2", "R2"},
          {"dry", rain(1), "-", ""},
          {"suspended before", suspend(1), "-", ""},
          {"it rains: no alarm owns the sound", rain(3), "-", ""}});
    EXPECT_EQ(lit(), -1);
}

TEST_F(Alarms, SafeThatIsHeldBackReleasesTheAlarm) {
    enable(u"R2"_s);
    controls.SafeDelayVal.Value = 60;
    walk({{"rain", rain(3), "R2", "R2"}, {"dry", rain(1), "-", ""}});
    EXPECT_TRUE(memory.UnsafeFlag);
}

TEST_F(Alarms, CloudAndSectorsCountAsTheyDoForTheVerdict) {
    enable(u"C1"_s);
    enable(u"W2"_s);
    controls.Cond[Quantity::Humidity][2].Value = 1;
    setLevel(Quantity::Humidity, 3); // unsafe throughout, without an alarm
    controls.CloudAlarmDelay = 20;
    walk({{"clear", nothing, "-", ""},
          {"cloudy", cloud(2), "-", ""},
          {"for 10 s", nothing, "-", ""},
          {"for 20 s", nothing, "C1", "C1"},
          // What has begun goes on while the plain level stands.
          {"a longer delay", set(controls.CloudAlarmDelay, 1000), "", "C1"},
          {"clear again", cloud(1), "-", ""}});

    // A strong wind sounds once it has blown from its sector for a minute.
    controls.Direction[Quantity::Wind][2].Caption = u"090  180  01"_s;
    setLevel(Quantity::Wind, 3);
    walk({{"from outside", set(seen.station.windDirection, 45.0), "-", ""},
          {"from inside, 10 s", set(seen.station.windDirection, 100.0), "-", ""},
          {"50 s", [this] { clock.advanceSeconds(30); }, "-", ""},
          {"60 s", nothing, "W2", "W2"},
          {"it stays", nothing, "", "W2"},
          {"outside again", set(seen.station.windDirection, 45.0), "-", ""}});
}

} // namespace
} // namespace skyhold
