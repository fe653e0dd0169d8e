// The page "Caution": what makes the monitor quicker to say unsafe, and slower to say safe.
#pragma once

#include "records/condition_controls.h"

class QWidget;

namespace skyhold {

QWidget* makeCautionPage(ConditionControls& conditions, QWidget* parent);

} // namespace skyhold
