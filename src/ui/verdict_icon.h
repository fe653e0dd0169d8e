// The icon of the program in the tray and on its window: the verdict of now. The four are told
// apart by their shape as well as by their colour.
#pragma once

#include "model/current_readings.h"

#include <QIcon>

namespace skyhold {

enum class VerdictIcon {
    None,   // no session, or no verdict yet: a ring
    Safe,   // a check mark in a disc
    Unsafe, // a cross in an octagon
    Fault   // a source fails, whatever the verdict: an exclamation mark in a triangle
};

// `lamp` is the colour of the verdict's lamp.
VerdictIcon verdictIcon(bool idle, Colour lamp, const CurrentReadings& readings);

QIcon drawVerdictIcon(VerdictIcon which);

} // namespace skyhold
