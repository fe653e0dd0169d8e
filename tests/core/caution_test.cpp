// SPDX-License-Identifier: GPL-3.0-or-later
// What makes the monitor quicker to say unsafe and slower to leave an open roof.
#include "core/clients.h"
#include "core/roof.h"
#include "core/wording.h"
#include "support/core_fixture.h"

namespace skyhold {
namespace {

class Caution : public CoreFixture {
  protected:
    ConditionControls& conditions() { return records().conditions; }
    void look() { core_->TimerLook.Tick(); }
    bool told(const QString& call) { return sensor_.takeCalls().contains(call); }
};

TEST_F(Caution, looksBetweenCyclesCanOnlyTurnTheVerdictUnsafe) {
    StartSession(*core_);
    EXPECT_FALSE(core_->TimerLook.enabled()) << "unless the user wants it";
    StopSession(*core_);
    conditions().QuickReaction.Value = 1;
    conditions().SafeDelayVal.Value = 30;
    StartSession(*core_);
    const std::int64_t cycles = records().session.CyclesDone;
    sensor_.takeCalls();
    look();
    EXPECT_EQ(sensor_.takeCalls(), (QStringList{u"Condition_Rain"_s, u"Condition_Cloud"_s}));
    EXPECT_FALSE(unsafe());

    sensor_.values[u"Condition_Rain"_s] = 3;
    sensor_.values[u"RainValue"_s] = 812.0;
    look();
    EXPECT_TRUE(unsafe());
    EXPECT_EQ(cause(), u"Rain: Rain at 812, since 22:00:00"_s);
    const QStringList calls = sensor_.takeCalls();
    EXPECT_LT(calls.indexOf(u"SetUnSafe(b true)"_s), calls.indexOf(u"Kiv_SetSwitch(d 2)"_s));
    EXPECT_TRUE(calls.contains(u"Kiv_SetSwitch(d 2)"_s));
    EXPECT_EQ(records().session.CyclesDone, cycles);

    sensor_.values[u"Condition_Rain"_s] = 1;
    look();
    EXPECT_TRUE(unsafe());
    EXPECT_FALSE(told(u"Kiv_SetSwitch(d 1)"_s));
    cycle();
    EXPECT_EQ(records().session.verdict.value(), Verdict::Waiting);

    // What is seen while safe is held back makes the wait begin anew.
    clock_.advanceSeconds(20);
    sensor_.values[u"Condition_Rain"_s] = 3;
    look();
    sensor_.values[u"Condition_Rain"_s] = 1;
    cycle();
    EXPECT_EQ(core_->result.judgement.waitSeconds, 30);
    cycle({}, 30);
    EXPECT_FALSE(unsafe());

    const struct {
        const char* what;
        QByteArray page;
        bool unsafe;
    } files[] = {
        {"calm", stationBytes({}), false},
        {"half written", stationBytes({.humidity = u"99 %"_s}).first(200), false},
        {"a value missing", stationBytes({.humidity = u"--"_s}), false},
        {"other units", stationBytes({.gust = u"40"_s, .speedUnit = u"mph"_s}), false},
        {"humid", stationBytes({.humidity = u"95 %"_s}), true},
    };
    for (const auto& [what, page, isUnsafe] : files) {
        SCOPED_TRACE(what);
        clock_.advanceSeconds(1);
        writeStationBytes(page);
        core_->stationWatch.Changed();
        EXPECT_EQ(unsafe(), isUnsafe);
    }
    EXPECT_EQ(records().session.CyclesDone, cycles + 3);

    // Nor does it look while a client decides.
    core_->caller = u":1.7"_s;
    HasControl(*core_, true, u"Dome"_s);
    sensor_.takeCalls();
    look();
    EXPECT_EQ(sensor_.takeCalls(), QStringList());
    StopSession(*core_);
    EXPECT_FALSE(core_->TimerLook.enabled());
}

TEST_F(Caution, aRoofThatDoesNotMoveIsAFaultWithAnAlarmOfItsOwn) {
    records().alarms.AlarmRoof.Tag = stationPath(); // any file will do as its sound
    records().alarms.AlarmRoof.Value = 1;
    conditions().RoofCheck.Value = 25;
    const auto roofIs = [this](double state) {
        sensor_.values[u"SwitchStatus"_s] = state;
        cycle();
        return roofText(core_->result).toStdString() + '|' +
               records().readings.AlarmSoundId.toStdString();
    };
    sensor_.values[u"SwitchStatus"_s] = 2.0;
    StartSession(*core_);
    EXPECT_EQ(roofIs(2), "|") << "it may take its time";
    EXPECT_EQ(roofIs(2), "|");
    EXPECT_EQ(roofIs(2), "Roof still closed 30 s after it was told to open|30");
    EXPECT_FALSE(unsafe());
    EXPECT_TRUE(cause().startsWith(u"Roof still closed 30 s"_s));
    EXPECT_EQ(roofIs(1), "|");

    sensor_.values[u"Condition_Rain"_s] = 3;
    EXPECT_EQ(roofIs(1), "|");
    cycle();
    cycle();
    EXPECT_EQ(roofIs(1), "Roof still open 30 s after it was told to close|30");
    EXPECT_TRUE(told(u"Kiv_SetSwitch(d 2)"_s)) << "again";
    EXPECT_EQ(roofIs(0), "Roof not reported closed 40 s after it was told to close|30");
    EXPECT_EQ(roofIs(2), "|");
}

TEST_F(Caution, anOpenRoofIsAskedAboutOrClosedWhenTheSessionEnds) {
    const struct {
        const char* what;
        int atStop;
        MessageAnswer answer;
        bool asked, stopped, closed;
    } cases[] = {
        {"as it was", 0, MessageAnswer::Cancel, false, true, false},
        {"asked, and goes on", 1, MessageAnswer::Cancel, true, false, false},
        {"asked, and left open", 1, MessageAnswer::No, true, true, false},
        {"asked, and closed", 1, MessageAnswer::Yes, true, true, true},
        {"closed", 2, MessageAnswer::Cancel, false, true, true},
    };
    for (const auto& [what, atStop, answer, asked, stopped, closed] : cases) {
        SCOPED_TRACE(what);
        conditions().RoofAtStop.Index = atStop;
        answer_ = answer;
        messages_.clear();
        StartSession(*core_);
        sensor_.takeCalls();
        StopByUser(*core_);
        EXPECT_EQ(messages_.size(), asked ? 1 : 0);
        EXPECT_EQ(running(), !stopped);
        EXPECT_EQ(told(u"Kiv_SetSwitch(d 2)"_s), closed);
        StopSession(*core_);
    }
    // A closed roof is no question.
    conditions().RoofAtStop.Index = 1;
    sensor_.values[u"Condition_Rain"_s] = 3;
    messages_.clear();
    StartSession(*core_);
    EXPECT_TRUE(RequestClose(*core_));
    EXPECT_EQ(messages_, QStringList());
}

} // namespace
} // namespace skyhold
