// SPDX-License-Identifier: GPL-3.0-or-later
// The icon of the program in the tray and on its window: the verdict of now. The four differ
// in shape as well as in colour.
#pragma once

#include "model/current_readings.h"
#include "model/session_state.h"

#include <QIcon>

namespace skyhold {

enum class VerdictIcon {
    None,   // no session, or no verdict yet: a ring
    Safe,   // a check mark in a disc
    Unsafe, // a cross in an octagon
    Fault   // a source fails, whatever the verdict: an exclamation mark in a triangle
};

VerdictIcon verdictIcon(SessionState session, Verdict verdict, const CurrentReadings& readings);

QIcon drawVerdictIcon(VerdictIcon which);

} // namespace skyhold
