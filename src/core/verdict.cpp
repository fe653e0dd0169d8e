#include "core/verdict.h"

#include "core/present.h"
#include "judge/judge.h"

namespace skyhold {

Moment momentOf(const Clock& clock) {
    return {clock.MsClock(), clock.now().toMSecsSinceEpoch()};
}

void setVerdict(MonitoringCore& core, bool unsafe) {
    publishVerdict(core.result.memory, unsafe, momentOf(core.clock));
    presentVerdict(core.result, core.records);
    core.stateChanged();
}

void distrustAfterGap(MonitoringCore& core) {
    core.stationMemory.reset();
    if (!clientDecides(core))
        distrustVerdict(core, QStringLiteral("Nothing has been read for a while"));
}

void distrustVerdict(MonitoringCore& core, const QString& reason) {
    distrust(core.result.memory, momentOf(core.clock));
    core.result.distrusted = reason;
    presentVerdict(core.result, core.records);
    core.records.display.LblCause.Caption = reason;
    core.stateChanged();
}

} // namespace skyhold
