// Compass labels of the station file.
#pragma once

#include <QString>
#include <QStringView>

#include <array>

namespace skyhold {

// Degrees of the first of the 16 labels that equals the trimmed, upper-cased text: its index times
// 22.5. A text that is none of them gives 0.
double CardinalToDegrees(QStringView label, const std::array<QString, 16>& labels);

} // namespace skyhold
