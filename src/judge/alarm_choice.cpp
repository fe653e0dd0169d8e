// SPDX-License-Identifier: GPL-3.0-or-later
#include "judge/alarm_choice.h"

namespace skyhold {

namespace {

bool isAtLevel(const ConditionAlarm& alarm, const Judgement& judgement) {
    return judgement.levels[alarm.quantity] == static_cast<std::int32_t>(alarm.index) + 1;
}

bool isWanted(const ConditionAlarm& alarm, const Rules& rules, const AlarmRules& alarms) {
    return rules.levels[alarm.quantity].unsafe[alarm.index] &&
           alarms.on[alarm.quantity][alarm.index];
}

// The owner keeps the sound while the plain cloud level stands, without the cloud delay.
bool goesOn(const ConditionAlarm& owner, const Judgement& judgement, const Rules& rules,
            const AlarmRules& alarms) {
    const bool counts = owner.quantity == Quantity::Cloud || judgement.holds[owner.quantity];
    return isAtLevel(owner, judgement) && counts && isWanted(owner, rules, alarms);
}

std::optional<ConditionAlarm> firstActive(const Judgement& judgement, const Rules& rules,
                                          const AlarmRules& alarms) {
    for (const Quantity quantity : kDecisionOrder) {
        const std::int32_t level = judgement.levels[quantity];
        if (level < 1 || !judgement.holds[quantity])
            continue;
        const ConditionAlarm alarm{quantity, static_cast<std::size_t>(level - 1)};
        if (isWanted(alarm, rules, alarms) && alarms.hasSound[quantity][alarm.index])
            return alarm;
    }
    return std::nullopt;
}

} // namespace

QString ConditionAlarm::id() const {
    return QString(QChar(rowOf(quantity).alarmLetter)) + QString::number(index);
}

std::optional<ConditionAlarm> conditionAlarm(const QString& id) {
    if (id.size() != 2 || id[1] < u'0' || id[1] > u'2')
        return std::nullopt;
    for (const QuantityRow& row : quantityTable()) {
        if (id[0] == row.alarmLetter)
            return ConditionAlarm{row.quantity, static_cast<std::size_t>(id[1].digitValue())};
    }
    return std::nullopt;
}

AlarmChoice SelectConditionAlarm(const Judgement& judgement, const Rules& rules,
                                 const AlarmRules& alarms, bool sourceFaulty,
                                 const QString& ownerId) {
    if (sourceFaulty)
        return {};
    if (!judgement.UnsafeFlag)
        return {.act = AlarmAct::Release, .ownerEnded = false, .alarm = {}};

    AlarmChoice choice;
    const std::optional<ConditionAlarm> owner = conditionAlarm(ownerId);
    choice.ownerEnded = owner && !goesOn(*owner, judgement, rules, alarms);
    const bool owned = !ownerId.isEmpty() && !choice.ownerEnded;

    const std::optional<ConditionAlarm> candidate = firstActive(judgement, rules, alarms);
    if (candidate && !alarms.suspended && !(owned && candidate == owner)) {
        choice.act = AlarmAct::Start;
        choice.alarm = *candidate;
    } else if (!owned) {
        choice.act = AlarmAct::Silence;
    }
    return choice;
}

} // namespace skyhold
