// SPDX-License-Identifier: GPL-3.0-or-later
// Which condition's alarm sounds: a function of the judgement and of who owns the sound.
//
// The id of an alarm is text: "C0".."D2" a letter and the level's index for a condition, "10" old
// or missing station data, "20" a failed sensor program. An alarm owns the sound from its start
// until it ends, so that one that the user stopped does not begin again before that.
#pragma once

#include "model/judgement.h"
#include "model/rules.h"

#include <QString>

#include <optional>

namespace skyhold {

// One level of one quantity as an alarm.
struct ConditionAlarm {
    Quantity quantity = Quantity::Cloud;
    std::size_t index = 0; // of the level, from 0

    QString id() const;
    bool operator==(const ConditionAlarm&) const = default;
};

// Nothing for the id of a source's alarm and for an empty one.
std::optional<ConditionAlarm> conditionAlarm(const QString& id);

// The alarm boxes as a value.
struct AlarmRules {
    PerQuantity<std::array<bool, kLevelCount>> on;
    PerQuantity<std::array<bool, kLevelCount>> hasSound;
    bool suspended = false;
};

enum class AlarmAct : std::uint8_t {
    Leave,   // as it is
    Start,   // `alarm` takes the sound
    Silence, // nobody owns the sound, and none is to be heard
    Release  // silence, and the owner of the sound gives it up
};

struct AlarmChoice {
    AlarmAct act = AlarmAct::Leave;
    bool ownerEnded = false; // the owner's condition is over, or it was switched off
    ConditionAlarm alarm;    // of Start
};

// `sourceFaulty`: the alarms of old data and of a failed source own the sound then.
AlarmChoice SelectConditionAlarm(const Judgement& judgement, const Rules& rules,
                                 const AlarmRules& alarms, bool sourceFaulty,
                                 const QString& ownerId);

} // namespace skyhold
