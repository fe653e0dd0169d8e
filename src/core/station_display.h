// Painting the station's values and taking their numbers.
#pragma once

#include "platform/text_forms.h"
#include "records/records.h"

namespace skyhold {

// valid: shows the station value table and takes its numbers into the readings, nothing where an
// entry is blank. Not valid: blanks values and conditions; the numbers and levels keep their last
// state.
void SetStationDataValid(bool valid, Records& records, const NumberForms& forms);

} // namespace skyhold
