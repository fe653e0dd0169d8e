#include "conditions/alarms.h"

#include "conditions/safety.h"
#include "monitor.h"
#include "support/scripted_media.h"

#include <QFile>
#include <QTemporaryDir>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

struct Alarms : Monitor {
    // A sound file of that name; its path.
    QString sound(const QString& name) const {
        const QString path = folder.filePath(name);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        return path;
    }

    CheckBox& box(const QString& id) { return alarms.alarms(quantityOf(id))[indexOf(id)]; }

    // Makes the level unsafe and gives it an alarm with a sound of the same name.
    void enable(const QString& id) {
        controls.unsafe(quantityOf(id))[indexOf(id)].Value = 1;
        box(id).Tag = sound(id + u".wav"_s);
        box(id).Value = 1;
    }

    void select() {
        SelectConditionAlarm(player, readings, controls, safety, sectors, clock.MsClock());
    }

    // Ten seconds later: the verdict and, after it, the alarm. What was heard of it.
    QString cycle() {
        clock.advanceSeconds(10);
        DecideSafety(readings, controls, safety, sectors, clock.MsClock(), [this] { select(); });
        return media.heard();
    }

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

    static Quantity quantityOf(const QString& id) {
        constexpr std::array order{Quantity::Cloud,       Quantity::Rain,      Quantity::Wind,
                                   Quantity::Gust,        Quantity::Dew,       Quantity::Humidity,
                                   Quantity::Temperature, Quantity::Brightness};
        return order[static_cast<std::size_t>(u"CRWGPHTD"_s.indexOf(id[0]))];
    }
    static std::size_t indexOf(const QString& id) {
        return static_cast<std::size_t>(id[1].digitValue());
    }

    QTemporaryDir folder;
    AlarmControls alarms;
    ScriptedMedia media;
    Timer timer{clock};
    AlarmPlayer player{media, timer, alarms};
};

TEST_F(Alarms, StartAndStopSendTheirCommands) {
    const QString plain = sound(u"bell.wav"_s);
    const QString blanks = sound(u"two words|2.wav"_s);
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
        {plain, 0, {open(plain), u"play KivNubiloPlayer from 0"_s}, true},
        {plain + u"|repeat"_s, 0, {open(plain), u"play KivNubiloPlayer from 0 repeat"_s}, true},
        {plain + u"|"_s, 0, {open(plain), u"play KivNubiloPlayer from 0 repeat"_s}, true},
        {blanks + u"|once"_s,
         0,
         {open(u'"' + blanks + u'"'), u"play KivNubiloPlayer from 0 repeat"_s},
         true},
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
        ShowPlayingAlarm(alarms, u"R2"_s);
        AlarmStart(player, row.spec);
        EXPECT_EQ(media.commands, silence + row.commands);
        EXPECT_EQ(timer.enabled(), row.started);
        EXPECT_EQ(timer.interval(), row.started ? 500 : 0);
        EXPECT_EQ(alarms.ButtStopAlarm.Visible, row.started);
        EXPECT_EQ(lit(), -1);

        media.commands.clear();
        ShowPlayingAlarm(alarms, u"R2"_s);
        AlarmStop(player);
        EXPECT_EQ(media.commands, silence);
        EXPECT_FALSE(timer.enabled());
        EXPECT_FALSE(alarms.ButtStopAlarm.Visible);
        EXPECT_EQ(lit(), -1);
        EXPECT_EQ(readings.AlarmSoundId, u"R2"_s);
        media.commands.clear();
    }
}

TEST_F(Alarms, TimerNoticesTheEndOfTheSound) {
    const struct {
        QString mode;
        int result;
        bool goesOn;
    } rows[] = {
        {u"playing"_s, 0, true},  {u"playing on"_s, 0, true}, {u"stopped"_s, 0, false},
        {u"play"_s, 0, false},    {QString(), 0, false},      {u"playing"_s, 1, false},
        {u"Playing"_s, 0, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(qPrintable(row.mode));
        AlarmStart(player, sound(u"bell.wav"_s));
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

TEST_F(Alarms, TheFirstOfTheListWins) {
    const QStringList order = u"C R W G P H T D"_s.split(u' ');
    const QList<int> indicators{0, 1, 2, 3, 5, 6, 4, 7};
    for (Label& direction : controls.DirectionWind)
        direction.Caption = QString();
    for (Label& direction : controls.DirectionGust)
        direction.Caption = QString();
    for (int index = 0; index < 3; ++index) {
        const QString digit = QString::number(index);
        for (const QString& letter : order) {
            enable(letter + digit);
            level(quantityOf(letter)) = index + 1;
        }
        // One after another ends; the next in the list takes over.
        for (qsizetype i = 0; i < order.size(); ++i) {
            const QString id = order[i] + digit;
            EXPECT_EQ(cycle(), id);
            EXPECT_EQ(readings.AlarmSoundId, id);
            EXPECT_EQ(lit(), indicators[i]);
            EXPECT_EQ(cycle(), QString()) << qPrintable(id);
            level(quantityOf(id)) = 0;
        }
        EXPECT_EQ(cycle(), u"-"_s);
        EXPECT_EQ(readings.AlarmSoundId, QString());
    }
}

TEST_F(Alarms, AlarmSoundIdWalks) {
    enable(u"C2"_s);
    enable(u"R1"_s);
    enable(u"R2"_s);
    const auto rain = [this](std::int32_t to) {
        return [this, to] {
            readings.RainCondition = to;
        };
    };
    const auto cloud = [this](std::int32_t to) {
        return [this, to] {
            readings.CloudCondition = to;
        };
    };
    const auto nothing = [] {
    };
    const struct {
        const char* what;
        std::function<void()> act;
        QString heard; // in the cycle that follows
        QString id;
    } steps[] = {
        {"safe", nothing, u"-"_s, {}},
        {"rain", rain(3), u"R2"_s, u"R2"_s},
        {"rain stays", nothing, {}, u"R2"_s},
        {"overcast is higher", cloud(3), u"C2"_s, u"C2"_s},
        {"clear: rain again", cloud(1), u"R2"_s, u"R2"_s},
        {"less rain is another alarm", rain(2), u"R1"_s, u"R1"_s},
        {"overcast", cloud(3), u"C2"_s, u"C2"_s},
        {"a lower one does not interrupt", rain(3), {}, u"C2"_s},
        {"clear", cloud(1), u"R2"_s, u"R2"_s},
        {"stopped by the user", [this] { AlarmStop(player); }, u"-"_s, u"R2"_s},
        {"and not started again", nothing, {}, u"R2"_s},
        {"dry", rain(1), u"-"_s, {}},
        {"a new rain", rain(3), u"R2"_s, u"R2"_s},
        {"its alarm box cleared", [this] { box(u"R2"_s).Value = 0; }, u"-"_s, {}},
        {"and ticked", [this] { box(u"R2"_s).Value = 1; }, u"R2"_s, u"R2"_s},
        {"another cause, and its unsafe box cleared",
         [this] {
             controls.CondHum[2].Value = 1;
             readings.HumidityCondition = 3;
             controls.CondRain[2].Value = 0;
         },
         u"-"_s,
         {}},
        {"ticked again", [this] { controls.CondRain[2].Value = 1; }, u"R2"_s, u"R2"_s},
        {"its sound taken away", [this] { box(u"R2"_s).Tag = QString(); }, {}, u"R2"_s},
        {"and dry, the other cause without a sound", rain(1), u"-"_s, {}},
        {"an alarm without a sound", rain(3), u"-"_s, {}},
        {"old station data owns the sound",
         [this] {
             box(u"R2"_s).Tag = sound(u"R2.wav"_s);
             readings.StationDataOld = true;
             readings.AlarmSoundId = u"10"_s;
         },
         {},
         u"10"_s},
        {"fresh again, its id left", [this] { readings.StationDataOld = false; }, u"R2"_s, u"R2"_s},
        {"the sensor program's failure owns it",
         [this] {
             readings.SensorError = true;
             readings.RainCondition = 1;
         },
         {},
         u"R2"_s},
        {"the sensor program is back", [this] { readings.SensorError = false; }, u"-"_s, {}},
        {"all safe",
         [this] {
             readings.HumidityCondition = 1;
             readings.AlarmSoundId = u"10"_s;
         },
         u"-"_s,
         {}},
        {"a broken sound is not tried again",
         [this] {
             media.openResult = 1;
             readings.RainCondition = 3;
         },
         u"-"_s, u"R2"_s},
        {"even when it is mended", [this] { media.openResult = 0; }, {}, u"R2"_s},
    };
    for (const auto& step : steps) {
        SCOPED_TRACE(step.what);
        step.act();
        EXPECT_EQ(cycle(), step.heard);
        EXPECT_EQ(readings.AlarmSoundId, step.id);
    }
    EXPECT_EQ(lit(), 1);
}

TEST_F(Alarms, SuspensionSilencesAndItsEndLetsTheAlarmStart) {
    enable(u"R2"_s);
    readings.RainCondition = 3;
    EXPECT_EQ(cycle(), u"R2"_s);
    alarms.SuspendSoundAlarm.Value = 1;
    SuspendSoundAlarm_Click(player, readings);
    EXPECT_EQ(media.heard(), u"-"_s);
    EXPECT_EQ(readings.AlarmSoundId, u"R2"_s);
    EXPECT_EQ(cycle(), QString());
    alarms.SuspendSoundAlarm.Value = 0;
    SuspendSoundAlarm_Click(player, readings);
    EXPECT_EQ(readings.AlarmSoundId, QString());
    EXPECT_EQ(cycle(), u"R2"_s);

    // While suspended no condition alarm starts, and none is owned.
    readings.RainCondition = 1;
    alarms.SuspendSoundAlarm.Value = 1;
    EXPECT_EQ(cycle(), u"-"_s);
    readings.RainCondition = 3;
    EXPECT_EQ(cycle(), u"-"_s);
    EXPECT_EQ(readings.AlarmSoundId, QString());
    EXPECT_EQ(lit(), -1);
}

TEST_F(Alarms, SafeThatIsHeldBackReleasesTheAlarm) {
    enable(u"R2"_s);
    controls.SafeDelayVal.Value = 60;
    readings.RainCondition = 3;
    EXPECT_EQ(cycle(), u"R2"_s);
    readings.RainCondition = 1;
    EXPECT_EQ(cycle(), u"-"_s);
    EXPECT_TRUE(readings.UnsafeFlag);
    EXPECT_EQ(readings.AlarmSoundId, QString());
}

TEST_F(Alarms, CloudAndSectorsCountAsTheyDoForTheVerdict) {
    enable(u"C1"_s);
    enable(u"W2"_s);
    controls.CondHum[2].Value = 1;
    readings.HumidityCondition = 3; // unsafe throughout, without an alarm
    safety.CloudAlarmDelay = 20;
    EXPECT_EQ(cycle(), u"-"_s);
    readings.CloudCondition = 2;
    EXPECT_EQ(cycle(), u"-"_s);
    EXPECT_EQ(cycle(), u"-"_s);
    EXPECT_EQ(cycle(), u"C1"_s);
    // What has begun goes on while the plain level stands.
    safety.CloudAlarmDelay = 1000;
    EXPECT_EQ(cycle(), QString());
    readings.CloudCondition = 1;
    EXPECT_EQ(cycle(), u"-"_s);

    // A strong wind sounds once it has blown from its sector for a minute.
    controls.DirectionWind[2].Caption = u"090  180  01"_s;
    readings.WindDirection = 45;
    readings.WindCondition = 3;
    EXPECT_EQ(cycle(), u"-"_s);
    readings.WindDirection = 100;
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(cycle(), u"-"_s);
    EXPECT_EQ(cycle(), u"W2"_s);
    EXPECT_EQ(cycle(), QString());
    readings.WindDirection = 45;
    EXPECT_EQ(cycle(), u"-"_s);
    EXPECT_EQ(readings.AlarmSoundId, QString());
}

TEST_F(Alarms, StationDataAlarm) {
    using enum StationFileState;
    const struct {
        const char* what;
        StationFileState state;
        bool ticked;
        bool hasSound;
        QString owner;
        QString heard;
        bool sensorStopped;
        QString id;
        int lit;
    } rows[] = {
        {"too old", Old, true, true, {}, u"ws"_s, true, u"10"_s, 8},
        {"too old, replaces a condition", Old, true, true, u"C2"_s, u"ws"_s, true, u"10"_s, 8},
        {"too old, replaces the sensor's", Old, true, true, u"20"_s, u"ws"_s, true, u"10"_s, 8},
        {"still too old", Old, true, true, u"10"_s, {}, false, u"10"_s, 8},
        {"not ticked", Old, false, true, u"C2"_s, {}, false, u"C2"_s, 0},
        {"no sound", Old, true, false, {}, {}, false, {}, -1},
        {"missing", Missing, true, true, {}, u"ws"_s, false, u"10"_s, 8},
        {"still missing", Missing, true, true, u"10"_s, {}, false, u"10"_s, 8},
        {"missing, not ticked", Missing, false, true, {}, {}, false, {}, -1},
        {"missing, no sound", Missing, true, false, u"C2"_s, u"-"_s, false, u"10"_s, 8},
        {"recent without being rewritten", Unchanged, true, true, u"10"_s, u"-"_s, false, u"10"_s,
         -1},
        {"recent, not its alarm", Unchanged, true, true, u"20"_s, {}, false, u"20"_s, 9},
        {"rewritten", Refreshed, true, true, u"10"_s, u"-"_s, false, {}, -1},
        {"rewritten, not its alarm", Refreshed, true, true, u"R2"_s, {}, false, u"R2"_s, 1},
    };
    alarms.SuspendSoundAlarm.Value = 1; // concerns the condition alarms alone
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        alarms.AlarmWS.Value = row.ticked;
        alarms.AlarmWS.Tag = row.hasSound ? sound(u"ws.wav"_s) : QString();
        readings.AlarmSoundId = row.owner;
        ShowPlayingAlarm(alarms, row.owner);
        bool sensorStopped = false;
        StationDataAlarm(row.state, player, readings, [&] {
            sensorStopped = true;
            EXPECT_TRUE(media.commands.isEmpty()) << "first the sensor program's own alarm";
        });
        EXPECT_EQ(sensorStopped, row.sensorStopped);
        EXPECT_EQ(readings.AlarmSoundId, row.id);
        EXPECT_EQ(lit(), row.lit);
        EXPECT_EQ(media.heard(), row.heard);
    }
}

TEST_F(Alarms, SensorFailureAlarm) {
    const struct {
        const char* what;
        bool failed;
        bool ticked;
        bool hasSound;
        QString owner;
        QString heard;
        bool sensorStopped;
        QString id;
        int lit;
    } rows[] = {
        {"failed", true, true, true, u"10"_s, u"nb"_s, true, u"20"_s, 9},
        {"still failed", true, true, true, u"20"_s, {}, false, u"20"_s, 9},
        {"not ticked", true, false, true, {}, {}, false, {}, -1},
        {"no sound", true, true, false, {}, {}, false, {}, -1},
        {"well again", false, true, true, u"20"_s, u"-"_s, false, {}, -1},
        {"well", false, true, true, u"R2"_s, {}, false, u"R2"_s, 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        alarms.AlarmNB.Value = row.ticked;
        alarms.AlarmNB.Tag = row.hasSound ? sound(u"nb.wav"_s) : QString();
        readings.AlarmSoundId = row.owner;
        ShowPlayingAlarm(alarms, row.owner);
        bool sensorStopped = false;
        SensorFailureAlarm(row.failed, player, readings, [&] { sensorStopped = true; });
        EXPECT_EQ(sensorStopped, row.sensorStopped);
        EXPECT_EQ(readings.AlarmSoundId, row.id);
        EXPECT_EQ(media.heard(), row.heard);
        EXPECT_EQ(lit(), row.lit);
    }
}

TEST_F(Alarms, EditingASoundReleasesTheAlarmAndNeedsTheRightButton) {
    const struct {
        const char* what;
        int button;
        QString tagAfter;
        bool opened;
        int value;
        QString id;
    } rows[] = {
        {"left", 1, u"/a.wav"_s, false, 1, u"R2"_s},
        {"right, a sound", 2, u"/b.wav"_s, true, 1, {}},
        {"right, cleared", 2, QString(), true, 0, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        CheckBox box;
        box.Tag = u"/a.wav"_s;
        box.Value = 1;
        readings.AlarmSoundId = u"R2"_s;
        bool opened = false;
        EditAlarmSound(row.button, box, readings, [&](CheckBox& edited) {
            opened = true;
            EXPECT_EQ(readings.AlarmSoundId, u"R2"_s);
            edited.Tag = row.tagAfter;
        });
        EXPECT_EQ(opened, row.opened);
        EXPECT_EQ(box.Value, row.value);
        EXPECT_EQ(readings.AlarmSoundId, row.id);
    }
    CheckBox silent;
    silent.Value = 1;
    EditAlarmSound(1, silent, readings, nullptr);
    EXPECT_EQ(silent.Value, 0);
}

} // namespace

} // namespace skyhold
