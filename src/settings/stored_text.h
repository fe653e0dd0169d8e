// SPDX-License-Identifier: GPL-3.0-or-later
// The texts in which the settings store keeps values.
#pragma once

#include "platform/text_forms.h"

#include <QString>

#include <optional>

namespace skyhold {

// A finite number with the locale's decimal separator. Stored numbers never have thousands
// separators, so a lone "." or "," is the decimal separator of the locale that they were saved
// under: a monitor that is started under another locale keeps its thresholds.
std::optional<double> storedNumber(const QString& text, const NumberForms& forms);

// A number rounded to an integer, halves to even; nothing outside lowest..highest.
std::optional<int> storedInteger(const QString& text, const NumberForms& forms, int lowest,
                                 int highest);

// The same, but what lies outside moves to the nearer end.
std::optional<int> nearestInteger(const QString& text, const NumberForms& forms, int lowest,
                                  int highest);

// "True" or "False", in any case.
std::optional<bool> storedBoolean(const QString& text);
QString booleanText(bool value);

} // namespace skyhold
