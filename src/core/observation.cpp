#include "core/observation.h"

#include "conditions/safety.h"
#include "conditions/staleness.h"

namespace skyhold {

void distrustAfterGap(MonitoringCore& core) {
    Records& records = core.records;
    records.readings.LastFileTime = neverReadFileTime();
    core.stationMemory.reset();
    if (records.safety.LocalControl)
        return;
    distrustVerdict(records, QStringLiteral("Nothing has been read for a while"));
}

void distrustVerdict(Records& records, const QString& cause) {
    records.safety.SafeState = 1;
    records.readings.UnsafeFlag = true;
    Disp_UnsafeFlag(records.readings, records.conditions);
    records.display.LblCause.Caption = cause;
}

} // namespace skyhold
