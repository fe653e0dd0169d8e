// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/verdict.h"

#include "core/present.h"
#include "judge/judge.h"

namespace skyhold {

Moment momentOf(const Clock& clock) {
    return {clock.MsClock(), clock.now().toMSecsSinceEpoch()};
}

void showVerdict(MonitoringCore& core) {
    core.records.readings.UnsafeFlag = core.result.memory.UnsafeFlag;
    presentVerdict(core.result, core.records);
    rememberState(core);
    core.stateChanged();
}

void setVerdict(MonitoringCore& core, bool unsafe) {
    publishVerdict(core.result.memory, unsafe, momentOf(core.clock));
    core.result.judgement.byClient = true;
    core.result.judgement.UnsafeFlag = unsafe;
    core.result.distrusted.clear();
    showVerdict(core);
}

void distrustAfterGap(MonitoringCore& core) {
    core.stationMemory.reset();
    if (!clientDecides(core))
        distrustVerdict(core, QStringLiteral("There have been no readings for a while"));
}

void distrustVerdict(MonitoringCore& core, const QString& reason) {
    distrust(core.result.memory, momentOf(core.clock));
    core.result.distrusted = reason;
    core.result.judgement.byClient = false;
    core.result.judgement.UnsafeFlag = true;
    core.records.display.LblCause.Caption = reason;
    showVerdict(core);
}

} // namespace skyhold
