// The limits of the five station quantities, the names and colours of their levels, and the wind
// sectors.
#pragma once

#include "records/condition_controls.h"
#include "records/messages.h"
#include "records/unit_controls.h"

class QWidget;

namespace skyhold {

// `showMessage`, which outlives the page, shows why a limit is refused.
QWidget* makeLimitsPage(ConditionControls& conditions, UnitControls& units,
                        const ShowMessage& showMessage, QWidget* parent);

} // namespace skyhold
