// Which condition alarm sounds.
#include "alarm_fixture.h"

namespace skyhold {

namespace {

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
