// SPDX-License-Identifier: GPL-3.0-or-later
// What the desktop is notified of.
#pragma once

#include "records/controls.h"

namespace skyhold {

struct NoticeControls {
    CheckBox OnVerdict; // the verdict changes
    CheckBox OnSource;  // a source fails
    CheckBox OnAlarm;   // an alarm begins to sound
};

} // namespace skyhold
