// SPDX-License-Identifier: GPL-3.0-or-later
#include "sensors/levels.h"

#include <cmath>

namespace skyhold {

std::optional<double> plainNumber(const QString& text) {
    bool ok = false;
    const double number = text.trimmed().toDouble(&ok);
    return ok && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

std::int32_t LevelFinder::levelOf(double value) {
    const auto beyond = [&](const std::optional<LevelLimit>& limit, std::int32_t level) {
        if (!limit)
            return false;
        const double slack = last_ >= level ? rule_.hysteresis : 0;
        return limit->above ? value > limit->value - slack : value < limit->value + slack;
    };
    last_ = beyond(rule_.level3, 3) ? 3 : beyond(rule_.level2, 2) ? 2 : 1;
    return last_;
}

std::optional<std::int32_t> LevelFinder::levelOf(const QString& text) const {
    const QString word = text.trimmed();
    const std::optional<double> number = plainNumber(word);
    for (const LevelRule::Word& row : rule_.words) {
        if (word.compare(row.text, Qt::CaseInsensitive) == 0)
            return row.level;
        if (number && plainNumber(row.text) == number)
            return row.level;
    }
    return std::nullopt;
}

} // namespace skyhold
