// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/clients.h"
#include "support/core_fixture.h"

namespace skyhold {
namespace {

using Session = CoreFixture;

TEST_F(Session, startAndStopLockAndUnlock) {
    SessionControls& session = records().session;
    const auto expect = [&](bool started) {
        EXPECT_EQ(running(), started);
        EXPECT_EQ(core_->TimerRead.enabled(), started);
        for (const bool enabled :
             {session.RefreshRead.Enabled.value(), records().units.UnitsTemp.Enabled.value(),
              records().graphs.GraphImage[5].Enabled.value()})
            EXPECT_EQ(enabled, !started);
        EXPECT_EQ(session.ButtStart.Visible, !started);
        EXPECT_EQ(session.ButtStop.Visible, started);
        EXPECT_EQ(records().window.mnuStart.Visible, !started);
        EXPECT_EQ(records().window.mnuStop.Visible, started);
        EXPECT_EQ(records().readings.SensorDataReady, started);
    };
    StartSession(*core_);
    expect(true);
    StartSession(*core_); // already running
    EXPECT_EQ(sensor_.created, 1);
    StopSession(*core_);
    expect(false);

    // The interval is the entry's first two characters.
    for (const auto& [entry, ms] : {std::pair{0, 5000}, {3, 60'000}}) {
        session.RefreshRead.choose(entry);
        StartSession(*core_);
        EXPECT_EQ(core_->TimerRead.interval(), ms);
        StopSession(*core_);
    }
}

TEST_F(Session, foldersAreMadeOrReported) {
    const QString file = folder_->write(u"a file"_s);
    const auto below = [&](const char* name) {
        return folder_->filePath(QLatin1String(name));
    };
    const struct {
        QString images, data, codes;
    } cases[] = {
        {below("images"), folder_->path(), u"i21 "_s},
        {folder_->path(), below("data/deep/er"), u"d11"_s},
        {below("i2"), below("d2"), u"i21 d11"_s},
        {file + u"/x"_s, file + u"/y"_s, u"i22 d12"_s},
    };
    QString seen;
    sensor_.onCall = [&](const QString& name) {
        if (name == u"Version"_s)
            seen = codes();
    };
    for (const auto& [images, data, expected] : cases) {
        records().graphs.GraphImagePath.Caption = images;
        records().dataFile.LblPathName.Caption = data;
        StartSession(*core_);
        EXPECT_EQ(seen, expected);
        EXPECT_TRUE(running());
        StopSession(*core_);
    }
    EXPECT_TRUE(QDir(below("data/deep/er")).exists());

    // The direction graph alone asks for no image folder.
    for (const std::size_t graph : {0U, 1U, 3U, 4U, 5U})
        records().graphs.GraphImage[graph].Value = 0;
    records().graphs.GraphImagePath.Caption = below("not made");
    StartSession(*core_);
    EXPECT_FALSE(QDir(below("not made")).exists());
}

TEST_F(Session, failedStartsEndIdleWithTheirMessages) {
    const QString tooOld = u"Version of Kiv_Nubilo must be equal or greater than 5.2x"_s;
    const QString cannot = u"Cannot read Kiv_Nubilo"_s;
    const auto answers = [this](const char* name, const QVariant& value) {
        return std::function([this, name, value] { sensor_.values[QLatin1String(name)] = value; });
    };
    const struct {
        const char* what;
        std::function<void()> prepare;
        QStringList messages;
    } cases[] = {
        {"absent", [&] { sensor_.present = false; }, {cannot}},
        {"too old", answers("Version", u"5.10.0001"_s), {tooOld, cannot}},
        {"no version", answers("Version", u"5.2"_s), {cannot}},
        {"never ready", answers("DataReady", false), {cannot}},
        {"silent", [&] { sensor_.answering = false; }, {cannot}},
    };
    QStringList notices;
    core_->showNotice = [&](const Message& message) {
        notices.append(message.text);
    };
    core_->closeNotices = [&] {
        notices.clear();
    };
    const ScriptedSensor well = sensor_;
    for (const auto& [what, prepare, expected] : cases) {
        SCOPED_TRACE(what);
        sensor_.values = well.values;
        sensor_.present = sensor_.answering = true;
        messages_.clear();
        prepare();
        // What a client's start has to say waits for nobody, and goes with the next start.
        for (const bool client : {true, false}) {
            client ? Device_Start(*core_) : StartSession(*core_);
            EXPECT_EQ(notices, client ? QStringList{expected.join(u'\n')} : QStringList());
            EXPECT_EQ(messages_, client ? QStringList() : expected);
            EXPECT_EQ(status(), u"Problem with Kiv_Nubilo"_s);
            EXPECT_EQ(cause(), expected.first());
            EXPECT_FALSE(running());
            EXPECT_FALSE(core_->TimerRead.enabled());
            EXPECT_TRUE(records().session.ButtStart.Visible);
            EXPECT_FALSE(core_->sensor.connected());
        }
    }
    // A client may start again while the user has not read why the first start failed.
    sensor_.values = well.values;
    sensor_.values[u"Version"_s] = u"5.10.0001"_s;
    sensor_.answering = true;
    messages_.clear();
    core_->showMessage = [&](const Message& message) {
        messages_.append(message.text);
        EXPECT_TRUE(records().session.ButtStart.Visible);
        sensor_.values = well.values;
        Device_Start(*core_);
        return answer_;
    };
    StartSession(*core_);
    EXPECT_EQ(messages_, QStringList{tooOld});
    EXPECT_TRUE(running());
}

TEST_F(Session, waitForFirstDataServesEventsAndAdmitsNoSecondStart) {
    sensor_.values[u"DataReady"_s] = false;
    records().session.NBTimeout.Value = 3;
    int waits = 0;
    clock_.onWait = [&] {
        ++waits;
        EXPECT_FALSE(records().readings.SensorDataReady);
        StartSession(*core_);
        Device_Start(*core_);
        EXPECT_EQ(sensor_.created, 1);
        if (waits == 3)
            sensor_.values[u"DataReady"_s] = true;
    };
    StartSession(*core_);
    EXPECT_EQ(waits, 3);
    EXPECT_TRUE(running());
    StopSession(*core_);

    sensor_.values[u"DataReady"_s] = false;
    waits = 0;
    clock_.onWait = [&] {
        ++waits;
    };
    StartSession(*core_);
    EXPECT_EQ(waits, 4); // at 0, 1, 2 and 3 s: the limit and up to one second more
    EXPECT_FALSE(running());
}

TEST_F(Session, stopAndCloseEndAWaitingStart) {
    sensor_.values[u"DataReady"_s] = false;
    bool closed = false;
    core_->closeWindow = [&] {
        closed = RequestClose(*core_);
    };
    for (const auto& [start, stop] :
         {std::pair{&StartSession, &StopSession}, {&Device_Start, &Device_Stop}}) {
        int waits = 0;
        clock_.onWait = [&, stop = stop] {
            ++waits;
            stop(*core_);
        };
        start(*core_);
        EXPECT_EQ(waits, 1);
        EXPECT_FALSE(running());
        EXPECT_TRUE(messages_.isEmpty());
        EXPECT_EQ(status(), QString());
    }

    clock_.onWait = [&] {
        EXPECT_FALSE(RequestClose(*core_));
    };
    StartSession(*core_);
    EXPECT_TRUE(closed);
    EXPECT_FALSE(core_->sensor.connected());
}

TEST_F(Session, aStartTakesUpWhatIsSlowOrReturns) {
    int waits = 0;
    std::function<void()> first, second;
    const struct {
        const char* what;
        std::function<void()> begin, atFirstWait, atSecondWait;
        int created;
    } cases[] = {
        {"instance comes late", [&] { sensor_.creating = true; }, nullptr,
         [&] { sensor_.creating = false; }, 1},
        {"hangs, and goes on", [&] { sensor_.state = ObjectState::Hanging; }, nullptr,
         [&] { sensor_.state = ObjectState::Ready; }, 1},
        {"ends before it has data, and comes back", [&] { sensor_.values[u"DataReady"_s] = false; },
         [&] {
             sensor_.state = ObjectState::Gone;
             sensor_.present = false;
         },
         [&] {
             sensor_.values[u"DataReady"_s] = sensor_.present = true;
             sensor_.state = ObjectState::Ready;
         },
         2},
    };
    clock_.onWait = [&] {
        ++waits;
        const auto& now = waits == 1 ? first : second;
        if (waits <= 2 && now)
            now();
    };
    for (const auto& [what, begin, atFirstWait, atSecondWait, created] : cases) {
        SCOPED_TRACE(what);
        waits = sensor_.created = 0;
        first = atFirstWait;
        second = atSecondWait;
        begin();
        StartSession(*core_);
        EXPECT_EQ(waits, 2);
        EXPECT_TRUE(running());
        EXPECT_EQ(sensor_.created, created);
        EXPECT_TRUE(sensor_.takeCalls().contains(u"Device_Start"_s));
        StopSession(*core_);
    }

    // What never comes ends the start after NBTimeout, and a stop at once; nothing is kept.
    for (const bool stopped : {false, true}) {
        sensor_.creating = true;
        sensor_.takeCalls();
        clock_.onWait = [&] {
            if (stopped)
                StopSession(*core_);
        };
        const std::int64_t begun = clock_.MsClock();
        StartSession(*core_);
        EXPECT_FALSE(running());
        EXPECT_EQ(clock_.MsClock() - begun, stopped ? 250 : 10'250);
        EXPECT_EQ(sensor_.takeCalls(), QStringList{u"released"_s});
    }
}

// Stands for an instance that is still to come, and comes to nothing.
class LostObject : public ScriptedObject {
  public:
    LostObject(ScriptedSensor& sensor, ObjectState state)
        : ScriptedObject(sensor, u"lost"_s)
        , state_(state) {}
    ObjectState state() const override { return std::exchange(state_, ObjectState::Gone); }

  private:
    mutable ObjectState state_;
};

TEST_F(Session, aStartEndsWhenTheProgramGoesAndTheBusCannotStartItAgain) {
    int asked = 0;
    SensorLink link(
        [&](const QString&) -> std::unique_ptr<DispatchObject> {
            ++asked;
            if (asked == 1)
                return std::make_unique<LostObject>(sensor_, ObjectState::Creating);
            if (asked > 20) // enough
                return std::make_unique<ScriptedObject>(sensor_);
            return asked % 2 == 0 ? std::make_unique<LostObject>(sensor_, ObjectState::Starting)
                                  : nullptr;
        },
        clock_);
    EXPECT_FALSE(link.OpenSensor({records().readings, records().session, records().alarms,
                                  records().conditions, records().display},
                                 {}));
    EXPECT_EQ(asked, 3);
}

TEST_F(Session, nothingToDoStopsAtOnceAndUploadAloneReadsNothing) {
    records().session.flgReadStation.set(0);
    StartSession(*core_);
    EXPECT_FALSE(running());
    records().session.flgUpload.set(1);
    StartSession(*core_);
    EXPECT_TRUE(running());
    EXPECT_EQ(sensor_.created, 0);
    EXPECT_FALSE(core_->TimerRead.enabled());
    EXPECT_EQ(core_->TimerUpload.interval(), 60'000);
    StopSession(*core_);
    EXPECT_FALSE(core_->TimerUpload.enabled());
}

TEST_F(Session, controlEndsWithItsLastHolderAndItsLossIsUnsafe) {
    const auto take = [this](const char* client, bool flag = true) {
        core_->caller = QLatin1String(client);
        HasControl(*core_, flag, flag ? core_->caller : QString());
    };
    records().conditions.SafeDelayVal.Value = 60;
    StartSession(*core_);
    const struct {
        const char* what;
        std::function<void()> act;
        const char* controller; // empty: the rules
        bool distrusted;
    } steps[] = {
        {"two take it", [&] { take("dome"), take("script"); }, "script", false},
        {"one of them goes", [&] { loseControl(*core_, u"dome"_s); }, "script", false},
        {"one that has none gives it back", [&] { take("guest", false); }, "script", false},
        {"one that has none goes", [&] { loseControl(*core_, u"guest"_s); }, "script", false},
        {"it is given back", [&] { take("script", false); }, "", false},
        {"two take it", [&] { take("script"), take("dome"); }, "dome", false},
        {"it says safe", [&] { core_->decidedBy = u"dome"_s; }, "dome", false},
        {"and goes", [&] { loseControl(*core_, u"dome"_s); }, "script", true},
        {"so does the last", [&] { loseControl(*core_, u"script"_s); }, "", true},
        {"it is taken", [&] { take("script"); }, "script", false},
        {"the user takes it back", [&] { TakeBackControl(*core_); }, "", true},
    };
    for (const auto& [what, act, controller, distrusted] : steps) {
        SCOPED_TRACE(what);
        act();
        EXPECT_EQ(unsafe(), distrusted);
        EXPECT_EQ(records().session.LblControl.Caption.value(), QLatin1String(controller));
        EXPECT_EQ(records().session.Frame3.Visible, *controller == 0);
        cycle();
        EXPECT_EQ(unsafe(), distrusted);
        if (*controller != 0) {
            setVerdict(*core_, false);
        } else if (distrusted) {
            EXPECT_EQ(core_->result.memory.SafeDelayRemaining, 60);
            cycle({}, 60);
            EXPECT_FALSE(unsafe());
        }
    }
}

TEST_F(Session, switchValueIsPassedOnOnlyWhenThisProgramDoesNotDriveIt) {
    const auto passedOn = [this] {
        sensor_.takeCalls();
        SetSwitch(core_->sensor, records().session, 1);
        return sensor_.calls.contains(u"Kiv_SetSwitch(i 1)"_s);
    };
    EXPECT_FALSE(passedOn()) << "no session";
    StartSession(*core_);
    EXPECT_FALSE(passedOn()) << "driven here";
    records().session.SWRole.choose(1);
    EXPECT_TRUE(passedOn());
    sensor_.values[u"Kiv_DeviceRole"_s] = u"SLAVE"_s;
    EXPECT_FALSE(passedOn());
}

} // namespace
} // namespace skyhold
