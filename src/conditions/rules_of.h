// SPDX-License-Identifier: GPL-3.0-or-later
// The settings in force, taken from their controls as a value.
#pragma once

#include "judge/alarm_choice.h"
#include "model/rules.h"
#include "records/alarm_controls.h"
#include "records/condition_controls.h"

namespace skyhold {

Rules rulesOf(const ConditionControls& controls);

AlarmRules alarmRulesOf(const AlarmControls& controls);

} // namespace skyhold
