// SPDX-License-Identifier: GPL-3.0-or-later
// Lets the user select and copy what a readout shows: with the mouse, or with the keyboard after
// Tab has brought the focus to it.
#pragma once

namespace skyhold {

class Readout;

// Costs nothing until it is used: only then does a line stand over the readout. The keys and the
// right clicks that the line has no use for go on to the readout.
void allowCopying(Readout* readout);

} // namespace skyhold
