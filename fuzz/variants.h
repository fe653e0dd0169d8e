// SPDX-License-Identifier: GPL-3.0-or-later
// Any values that a client can send, made of the bytes of an input.
#pragma once

#include "target.h"

#include "bus/automation_value.h"

#include <QVariant>

namespace skyhold::fuzz {

// As they leave a client: numbers of every width, texts, paths, dates, lists, structures,
// dictionaries and variants in each other, at most `depth` of them.
QVariant sentValue(Input& input, int depth = 6);

// As they have arrived: one of the forms of bus/automation_value.h.
QVariant arrivedValue(Input& input, int depth = 2);

// Whether a value is of the kind that the table of members names; a number is finite.
bool hasType(const QVariant& value, AutomationType type);

} // namespace skyhold::fuzz
