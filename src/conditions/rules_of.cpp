// SPDX-License-Identifier: GPL-3.0-or-later
#include "conditions/rules_of.h"

#include "conditions/sector_text.h"

namespace skyhold {

namespace {

// A text without a sector, and one that cannot be read, restrict nothing.
std::optional<Sector> sectorOf(const QString& text) {
    return text.trimmed().isEmpty() ? std::nullopt : parseSector(text);
}

} // namespace

Rules rulesOf(const ConditionControls& controls) {
    Rules rules;
    for (const QuantityRow& row : quantityTable()) {
        LevelRules& levels = rules.levels[row.quantity];
        for (std::size_t i = 0; i < kLevelCount; ++i) {
            levels.unsafe[i] = controls.Cond[row.quantity][i].checked();
            levels.limits[i] = controls.Limit[row.quantity][i].Value;
            if (row.hasSectors())
                levels.sectors[i] = sectorOf(controls.Direction[row.quantity][i].Caption);
        }
    }
    rules.stationOldIsUnsafe = controls.WSDataOldUnsafe.checked();
    rules.sensorFailedIsUnsafe = controls.NBDataOldUnsafe.checked();
    rules.beyondIsUnsafe = controls.BeyondLimitUnsafe.checked();
    rules.calm = {.closures = static_cast<std::int32_t>(controls.FlapClosures.Value),
                  .longestSeconds = controls.FlapLongest.Value,
                  .earnFirstSafe = controls.EarnFirstSafe.checked()};
    rules.safeDelaySeconds = controls.SafeDelayVal.Value;
    rules.cloudDelaySeconds = controls.CloudAlarmDelay;
    return rules;
}

AlarmRules alarmRulesOf(const AlarmControls& controls) {
    AlarmRules rules;
    for (const Quantity quantity : kAllQuantities) {
        for (std::size_t i = 0; i < kLevelCount; ++i) {
            const CheckBox& box = controls.Alarm[quantity][i];
            rules.on[quantity][i] = box.checked();
            rules.hasSound[quantity][i] = !box.Tag.value().isEmpty();
        }
    }
    rules.suspended = controls.SuspendSoundAlarm.checked();
    return rules;
}

} // namespace skyhold
