// Which levels and which failures make the sky unsafe, and how long a return to safe is delayed.
#pragma once

#include "records/condition_controls.h"

class QWidget;

namespace skyhold {

QWidget* makeUnsafePage(ConditionControls& conditions, QWidget* parent);

} // namespace skyhold
