// SPDX-License-Identifier: GPL-3.0-or-later
// Values of the automation interface as text on the command line and as JSON.
#pragma once

#include "platform/plain_line.h"

#include "bus/automation_value.h"

#include <QJsonArray>

namespace skyhold {

// "integer", "number", "boolean", "text", "time", "object", "any"; empty for none.
QString typeName(AutomationType type);

// The value of a type that a text stands for, whatever the locale: an integer in decimal or "0x"
// digits, a finite number with ".", "true" or "false" in any case, a text as it stands ("any" is
// taken as text). Nothing for a text that does not have that form or does not fit.
std::optional<QVariant> parseValue(const QString& text, AutomationType type);

// Nothing, or an array without elements, which is how nothing travels inside an array.
bool isEmptyValue(const QVariant& value);

// A value as text. Elements of an array stand on lines of their own, those of a table's row are
// separated by tabs. Control characters in texts become blanks.
QString valueText(const QVariant& value);

// A value as JSON: an empty value, and a number that is not finite, is null; a time is a text in
// ISO form.
QJsonValue valueJson(const QVariant& value);
QJsonArray jsonArray(const QVariantList& values);

} // namespace skyhold
