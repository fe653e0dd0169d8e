// SPDX-License-Identifier: GPL-3.0-or-later
#include "settings/stored_text.h"

#include <algorithm>

namespace skyhold {

std::optional<double> storedNumber(const QString& text, const NumberForms& forms) {
    for (const QString& decimal : {forms.decimal, QStringLiteral("."), QStringLiteral(",")}) {
        if (const auto value = numberFromText(text, {.decimal = decimal, .thousand = {}}))
            return value;
    }
    return std::nullopt;
}

std::optional<int> storedInteger(const QString& text, const NumberForms& forms, int lowest,
                                 int highest) {
    const auto number = storedNumber(text, forms);
    if (!number)
        return std::nullopt;
    const double rounded = roundHalfEven(*number);
    if (rounded < lowest || rounded > highest)
        return std::nullopt;
    return static_cast<int>(rounded);
}

std::optional<int> nearestInteger(const QString& text, const NumberForms& forms, int lowest,
                                  int highest) {
    const auto number = storedNumber(text, forms);
    if (!number)
        return std::nullopt;
    return static_cast<int>(std::clamp(roundHalfEven(*number), double(lowest), double(highest)));
}

std::optional<bool> storedBoolean(const QString& text) {
    const QString word = text.trimmed().toLower();
    if (word == QStringLiteral("true"))
        return true;
    if (word == QStringLiteral("false"))
        return false;
    return std::nullopt;
}

QString booleanText(bool value) {
    return value ? QStringLiteral("True") : QStringLiteral("False");
}

} // namespace skyhold
