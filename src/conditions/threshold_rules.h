// SPDX-License-Identifier: GPL-3.0-or-later
// The three limits of a quantity must increase, so that every value falls into exactly one band.
#pragma once

#include "records/condition_controls.h"
#include "records/messages.h"

#include <array>
#include <cstddef>

namespace skyhold {

// Each limit above the one before. Limits from elsewhere than the boxes may not be.
bool limitsInOrder(const ThreeBoxes& limits);

struct Thresholds {
    std::array<double, 3> limits{};
    std::array<QString, 3> descriptions; // of the three levels
};

// Why the entry `index` (0..2) may not be left as it is; empty when it may. For what the user
// types: automation clients and unit changes are not asked.
QString ValidateLimit(Quantity quantity, std::size_t index, const Thresholds& thresholds);

// The same over the limits in force, with `value` as the entry `index`.
QString limitFault(ConditionControls& conditions, Quantity quantity, std::size_t index,
                   double value);

// The message of such a fault, which names the quantity: levels of several quantities may have the
// same name.
Message refusedLimit(Quantity quantity, const QString& fault);

// A limit that is being typed is to be used or kept. False, with a message, when it is refused;
// otherwise it is entered.
bool acceptLimits(ConditionControls& conditions, const ShowMessage& showMessage);
// The same where the user cannot be asked: a refused limit gives way to the previous one.
void dropRefusedLimits(ConditionControls& conditions);

} // namespace skyhold
