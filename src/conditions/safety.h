// The verdict: safe or unsafe, once per read cycle, with the delay that holds a safe one back.
#pragma once

#include "conditions/classification.h"
#include "records/condition_controls.h"
#include "model/current_readings.h"

#include <functional>
#include <vector>

namespace skyhold {

// What spoke for unsafe in one cycle, before the delay.
struct SafetyDecision {
    struct Level {
        Quantity quantity = Quantity::Cloud;
        std::int32_t level = 0;
    };
    std::vector<Level> levels;          // in the order of the tests
    std::vector<Quantity> beyondLimits; // where values beyond the last limit are unsafe
    bool stationDataOld = false;
    bool sensorFailed = false;

    bool unsafe() const {
        return !levels.empty() || !beyondLimits.empty() || stationDataOld || sensorFailed;
    }
};

// True when `level` is the current cloud level and counts: cloudy only after it has lasted
// CloudAlarmDelay seconds, unless it follows overcast or begins a session. Notes changes of the
// cloud level, so each caller asks once per level and cycle.
bool CloudLevelActive(std::int32_t level, const CurrentReadings& readings, SafetyState& safety,
                      std::int64_t nowMs);

// The verdict to publish (true = unsafe) for this cycle's raw decision. A change from unsafe to
// safe is held back for `delaySeconds`; 0 and less is no delay, and the first decision of a
// session has none. Waiting is: published unsafe, raw safe.
bool applySafeDelay(bool unsafe, double delaySeconds, SafetyState& safety, std::int64_t nowMs);

// Decides, publishes UnsafeFlag and the countdown text, then calls `selectAlarm`. While an
// automation client has local control nothing of this happens and the decision is empty.
SafetyDecision DecideSafety(CurrentReadings& readings, ConditionControls& controls,
                            SafetyState& safety, SectorState& sectors, std::int64_t nowMs,
                            const std::function<void()>& selectAlarm);

// The causes of an unsafe decision in words, "Rain: Wet, Wind: Windy"; empty for a safe one.
QString verdictCauses(const SafetyDecision& decision, const ConditionControls& controls,
                      const SensorDescription& sensorDescription);

// What a verdict leaves out or may be wrong about, in words, whatever it is: values beyond the last
// limit that are not judged, and limits that are not in order.
QStringList verdictNotes(const CurrentReadings& readings, const ConditionControls& controls,
                         const NumberForms& forms);

// Shows the published verdict as text and lamp.
void Disp_UnsafeFlag(const CurrentReadings& readings, ConditionControls& controls);

// -1 (true) gives "Unsafe", 0 "Safe", anything else an empty text.
QString SafeText(std::int32_t flag);

} // namespace skyhold
