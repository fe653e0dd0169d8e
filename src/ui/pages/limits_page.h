// The limits of the five station quantities, the names and colours of their levels, and the wind
// sectors.
#pragma once

#include "records/condition_controls.h"
#include "records/unit_controls.h"

class QWidget;

namespace skyhold {

QWidget* makeLimitsPage(ConditionControls& conditions, UnitControls& units, QWidget* parent);

} // namespace skyhold
