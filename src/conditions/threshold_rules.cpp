#include "conditions/threshold_rules.h"

namespace skyhold {

namespace {

const QString kGreater = QStringLiteral(" value CANNOT be greater or equal than ");
const QString kSmaller = QStringLiteral(" value CANNOT be smaller or equal than ");
const QString kLarger = QStringLiteral(" value CANNOT be larger or equal than ");

} // namespace

QString ValidateLimit(Quantity quantity, std::size_t index, const Thresholds& thresholds) {
    const std::array<double, 3>& limits = thresholds.limits;
    const std::array<QString, 3>& descriptions = thresholds.descriptions;
    const auto message = [&](const QString& words, std::size_t other) {
        return descriptions[index].toUpper() + words + descriptions[other].toUpper() +
               QStringLiteral(" value");
    };
    if (quantity == Quantity::Humidity && limits[index] > 100)
        return descriptions[index].toUpper() + QStringLiteral(" value CANNOT be greater than 100");
    if (index == 0 && limits[1] <= limits[0])
        return message(kGreater, 1);
    if (index == 1 && limits[0] >= limits[1])
        return message(kSmaller, 0);
    if (index == 1 && limits[2] <= limits[1])
        return message(kLarger, 2);
    if (index == 2 && limits[0] >= limits[2])
        return message(kSmaller, 0);
    if (index == 2 && limits[1] >= limits[2])
        return message(kSmaller, 1);
    return {};
}

} // namespace skyhold
