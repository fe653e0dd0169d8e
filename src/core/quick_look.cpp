// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/quick_look.h"

#include "conditions/rules_of.h"
#include "core/observe.h"
#include "core/publish.h"
#include "core/read_cycle.h"
#include "core/verdict.h"
#include "judge/judge.h"

#include <QElapsedTimer>

namespace skyhold {

namespace {

constexpr int kLookMs = 1000;
constexpr int kSlowMs = 200; // a sensor program that takes longer is left to the cycles

// There is a verdict of the rules that says safe, or waits for it.
bool mayLook(const MonitoringCore& core) {
    return core.records.session.running() && core.result.number > 0 && !clientDecides(core) &&
           core.result.judgement.causes.isEmpty();
}

void judgeNow(MonitoringCore& core, Observation seen) {
    CycleResult& result = core.result;
    const Rules rules = rulesOf(core.records.conditions);
    JudgeMemory memory = result.memory;
    const Judgement judgement = judge(seen, rules, memory, momentOf(core.clock));
    if (judgement.causes.isEmpty())
        return; // as if nobody had looked
    result.observation = std::move(seen);
    result.rules = rules;
    result.memory = memory;
    result.judgement = judgement;
    result.distrusted.clear();
    publishUnsafe(core);
}

// What fails here is reported by the next cycle.
void lookAtSensor(MonitoringCore& core) {
    if (!mayLook(core) || core.result.observation.sensor.failed())
        return;
    QElapsedTimer timer;
    timer.start();
    core.sensor.beginRequest();
    Observation seen = core.result.observation;
    bool changed = false;
    for (const Quantity quantity : {Quantity::Rain, Quantity::Cloud}) {
        const bool read = readSensorLevel(core.sensor, quantity, seen);
        changed = changed || (read && seen.givenLevels[quantity] !=
                                          core.result.observation.givenLevels[quantity]);
    }
    if (changed) {
        readSensorValues(core.sensor, core.forms, seen);
        judgeNow(core, std::move(seen));
    }
    if (timer.elapsed() > kSlowMs)
        core.TimerLook.disarm();
}

// A file that cannot be used may be half written: the next cycle judges that.
void lookAtStation(MonitoringCore& core) {
    if (!mayLook(core))
        return;
    StationFileMemory memory = core.stationMemory; // the cycle's own look is still to come
    Observation seen = core.result.observation;
    seen.station = observeStation(core.records.stationFile, core.records.units, core.forms,
                                  core.clock, memory);
    if (!seen.station.usable() || seen.station.faulty() || !unitsStay(seen.station, core))
        return;
    takeStationValues(seen, core.forms);
    judgeNow(core, std::move(seen));
}

} // namespace

void startQuickLooks(MonitoringCore& core) {
    if (!core.records.conditions.QuickReaction.checked())
        return;
    core.TimerLook.Tick = [&core] {
        lookAtSensor(core);
        core.stationWatch.poll(); // where the system does not report changes
    };
    core.TimerLook.arm(kLookMs);
    core.stationWatch.Changed = [&core] {
        lookAtStation(core);
    };
    core.stationWatch.follow(core.records.stationFile.HTMFile.Caption);
}

void stopQuickLooks(MonitoringCore& core) {
    core.TimerLook.disarm();
    core.stationWatch.stop();
}

} // namespace skyhold
