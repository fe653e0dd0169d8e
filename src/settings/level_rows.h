// The rows of what is kept for each level of each quantity: limits, descriptions, colours, unsafe
// levels and alarms.
#pragma once

#include "settings/row_builder.h"

namespace skyhold {

// Each is there for constant records and for others.
template <class Conditions>
void limitRows(KeyRows& rows, Conditions& conditions);
template <class Conditions>
void descriptionRows(KeyRows& rows, Conditions& conditions);
template <class Conditions>
void colourRows(KeyRows& rows, Conditions& conditions);
template <class Conditions>
void unsafeRows(KeyRows& rows, Conditions& conditions);
template <class Alarms>
void alarmRows(KeyRows& rows, Alarms& alarms);
template <class Alarms, class Conditions>
void staleDataRows(KeyRows& rows, Alarms& alarms, Conditions& conditions);

} // namespace skyhold
