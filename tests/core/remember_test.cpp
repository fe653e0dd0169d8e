// SPDX-License-Identifier: GPL-3.0-or-later
// What the monitor puts into its history in the course of a session.
#include "core/clients.h"
#include "core/verdict.h"
#include "history/reader.h"
#include "support/core_fixture.h"

namespace skyhold {
namespace {

class Remember : public CoreFixture {
  protected:
    // "kind name state mm:ss: text" of every event.
    QStringList events(const QString& path) {
        QStringList lines;
        for (const HistoryEvent& event : HistoryReader(path).readEvents(kBeginning, kEndOfTime))
            lines += u"%1 %2: %3"_s.arg(
                QStringList{event.kind, event.name, event.state}.join(u' ').simplified(),
                QDateTime::fromMSecsSinceEpoch(event.atMs).toString(u"mm:ss"_s), event.text);
        return lines;
    }
};

TEST_F(Remember, everythingThatChangesIsAnEvent) {
    const QString path = folder_->filePath(u"history.db"_s);
    core_->history.begin(path, {});
    records().conditions.SafeDelayVal.Value = 20;
    StartSession(*core_);
    cycle();
    rainCycle(3);
    cycle(); // no change
    rainCycle(1);
    cycle({}, 20);
    records().conditions.Limit[Quantity::Gust][0].Value = 12;
    cycle();
    core_->caller = u":1.7"_s;
    HasControl(*core_, true, u"Dome"_s);
    setVerdict(*core_, true);
    TakeBackControl(*core_);
    sensor_.values[u"DeviceIsRunning"_s] = false;
    cycle();
    StopSession(*core_);
    ASSERT_TRUE(core_->history.end());
    const char* const expected =
        "limits loaded 00:00: Limits in force\n"
        "roof command open 00:00: Command to open the roof\n"
        "session started 00:00: Session started, a cycle every 10 s\n"
        "verdict safe 00:00: \n"
        "verdict unsafe 00:20: Rain: Rain at 2850, since 22:00:20\n"
        "roof command closed 00:20: Command to close the roof\n"
        "verdict waiting 00:40: Safe in 20 s; last reset by Rain at 22:00:30\n"
        "verdict safe 01:00: \n"
        "roof command open 01:00: Command to open the roof\n"
        "limits changed 01:10: Limits changed: ThreshGustCalm 10 \u2192 12\n"
        "verdict unsafe 01:10: Unsafe by Dome\n"
        "verdict unsafe 01:10: Control has been taken back\n"
        "source sensor failed 01:20: Sensor program failed\n"
        "verdict unsafe 01:20: Kiv_Nubilo has failed, since 22:01:20\n"
        "roof command closed 01:20: Command to close the roof\n"
        "session stopped 01:20: Session stopped\n"
        "verdict none 01:20: No monitoring session is running";
    EXPECT_EQ(events(path).join(u'\n').toStdString(), expected);
    std::vector<KeptCycle> cycles;
    HistoryReader(path).eachCycle(kBeginning, kEndOfTime, [&cycles](const KeptCycle& cycle) {
        cycles.push_back(cycle);
        return true;
    });
    EXPECT_EQ(cycles.size(), 8U);
}

} // namespace
} // namespace skyhold
