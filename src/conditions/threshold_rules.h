// The three limits of a quantity must increase, so that every value falls into exactly one band.
#pragma once

#include "records/conditions.h"

#include <QString>

#include <array>
#include <cstddef>

namespace skyhold {

struct Thresholds {
    std::array<double, 3> limits{};
    std::array<QString, 3> descriptions; // of the three levels
};

// Why the entry `index` (0..2) may not be left as it is; empty when it may. For what the user
// types: automation clients and unit changes are not asked.
QString ValidateLimit(Quantity quantity, std::size_t index, const Thresholds& thresholds);

} // namespace skyhold
