// SPDX-License-Identifier: GPL-3.0-or-later
#include "units/cardinal.h"

namespace skyhold {

std::optional<double> CardinalToDegrees(QStringView label, const std::array<QString, 16>& labels) {
    const QString wanted = label.trimmed().toString().toUpper();
    for (std::size_t i = 0; i < labels.size() && !wanted.isEmpty(); ++i) {
        if (labels[i] == wanted)
            return 22.5 * static_cast<double>(i);
    }
    return std::nullopt;
}

} // namespace skyhold
