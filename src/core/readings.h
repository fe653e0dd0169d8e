// SPDX-License-Identifier: GPL-3.0-or-later
// The readings of now, as files and other programs take them.
#pragma once

#include "model/current_readings.h"
#include "model/cycle_result.h"

namespace skyhold {

// Takes over what a cycle came to. What a source did not say in it stays as it was; a station value
// that is missing in a file that can be used is nothing.
void takeReadings(const CycleResult& result, CurrentReadings& readings);

} // namespace skyhold
