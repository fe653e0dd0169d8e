// SPDX-License-Identifier: GPL-3.0-or-later
#include "conditions/threshold_rules.h"

namespace skyhold {

namespace {

const QString kGreater = QStringLiteral(" value CANNOT be greater or equal than ");
const QString kSmaller = QStringLiteral(" value CANNOT be smaller or equal than ");
const QString kLarger = QStringLiteral(" value CANNOT be larger or equal than ");

// `act` gets the box, a copy of its edit, its quantity, and why the edit is refused.
template <class Act>
void forEachEdit(ConditionControls& conditions, const Act& act) {
    for (const Quantity quantity : kStationQuantities) {
        for (std::size_t i = 0; i < 3; ++i) {
            NumberBox& box = conditions.Limit[quantity][i];
            if (const std::optional<NumberEdit> edit = box.Edit)
                act(box, *edit, quantity, limitFault(conditions, quantity, i, edit->typed));
        }
    }
}

} // namespace

bool limitsInOrder(const ThreeBoxes& limits) {
    return limits[0].Value < limits[1].Value && limits[1].Value < limits[2].Value;
}

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

QString limitFault(ConditionControls& conditions, Quantity quantity, std::size_t index,
                   double value) {
    Thresholds thresholds;
    for (std::size_t i = 0; i < 3; ++i) {
        thresholds.limits[i] = conditions.Limit[quantity][i].Value;
        thresholds.descriptions[i] = conditions.Color[quantity][i].Caption;
    }
    thresholds.limits[index] = value;
    return ValidateLimit(quantity, index, thresholds);
}

Message refusedLimit(Quantity quantity, const QString& fault) {
    return {fault, MessageStyle::Ok, {}, QString::fromUtf16(rowOf(quantity).title)};
}

bool acceptLimits(ConditionControls& conditions, const ShowMessage& showMessage) {
    std::optional<Message> fault;
    forEachEdit(conditions, [&](NumberBox& box, const NumberEdit& edit, Quantity quantity,
                                const QString& refused) {
        if (!refused.isEmpty()) {
            fault = refusedLimit(quantity, refused);
            return;
        }
        if (box.Value != edit.typed)
            box.set(edit.typed);
        box.Edit.reset();
    });
    if (fault)
        showMessage(*fault);
    return !fault;
}

void dropRefusedLimits(ConditionControls& conditions) {
    forEachEdit(conditions,
                [](NumberBox& box, const NumberEdit& edit, Quantity, const QString& refused) {
                    if (refused.isEmpty())
                        return;
                    box.set(edit.typed); // so that the view of an emptied box sees a change, too
                    box.set(edit.before);
                    box.Edit.reset();
                });
}

} // namespace skyhold
