// SPDX-License-Identifier: GPL-3.0-or-later
// What is unsafe apart from the levels: failures of the sources, values beyond the last limit; and
// how long a return to safe is delayed.
#pragma once

#include "records/condition_controls.h"
#include "ui/pages/alarm_cells.h"

namespace skyhold {

QWidget* makeSourcesAndDelay(ConditionControls& conditions, const AlarmUse& use, QWidget* parent);

} // namespace skyhold
