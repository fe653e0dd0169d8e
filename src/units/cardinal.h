// SPDX-License-Identifier: GPL-3.0-or-later
// Compass labels of the station file.
#pragma once

#include <QString>
#include <QStringView>

#include <array>
#include <optional>

namespace skyhold {

// Degrees of the first of the 16 labels that equals the trimmed, upper-cased text: its index times
// 22.5. Nothing for any other text, and for an empty one: stations have no direction in still air.
std::optional<double> CardinalToDegrees(QStringView label, const std::array<QString, 16>& labels);

} // namespace skyhold
