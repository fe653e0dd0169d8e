// SPDX-License-Identifier: GPL-3.0-or-later
// The rules as named values, to be kept, compared, shown and changed one by one. The names are
// those of the public members and of the settings: "ThreshGustWindy", "SafeGustWindy",
// "SafeDelayVal".
#pragma once

#include "model/rules.h"

#include <QJsonObject>
#include <QString>

#include <vector>

namespace skyhold {

struct RuleValue {
    QString name;
    QString text; // a number with a point; a sector as "from to minutes", empty for none
    bool operator==(const RuleValue&) const = default;
};

// All of them, in the order of the interface.
std::vector<RuleValue> ruleValues(const Rules& rules);

// Sets the one of that name, in any case. False when there is none or the text is no value of it;
// `fault` says so.
bool setRule(Rules& rules, const QString& name, const QString& text, QString& fault);

// The names and texts as an object; one that is missing in an object stays what it is in `rules`.
QJsonObject rulesObject(const Rules& rules);
void takeRules(Rules& rules, const QJsonObject& object);

// "ThreshGustWindy 20 → 25, SafeDelayVal 60 → 120"; empty for none.
QString ruleChanges(const Rules& before, const Rules& after);

} // namespace skyhold
