// SPDX-License-Identifier: GPL-3.0-or-later
// Lets the mouse select and copy the wrapped text of a readout, which stays no stop of Tab.
#pragma once

namespace skyhold {

class Readout;

// A click selects all of it, a drag after that a part. Until then it costs nothing.
void allowMouseSelection(Readout* readout);

} // namespace skyhold
