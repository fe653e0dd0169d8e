// SPDX-License-Identifier: GPL-3.0-or-later
#include "conditions/rule_values.h"

#include "conditions/level_names.h"
#include "platform/text_forms.h"

#include <QStringList>

#include <algorithm>
#include <cmath>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

QString textOf(double value) {
    return numberText(value, {});
}
QString textOf(bool value) {
    return value ? u"1"_s : u"0"_s;
}
QString textOf(std::int32_t value) {
    return QString::number(value);
}
QString textOf(const std::optional<Sector>& sector) {
    return sector ? u"%1 %2 %3"_s.arg(sector->from).arg(sector->to).arg(sector->minutes)
                  : QString();
}

bool take(double& value, const QString& text) {
    const std::optional<double> number = numberFromText(text, {});
    if (number)
        value = *number;
    return number.has_value();
}
bool take(bool& value, const QString& text) {
    const bool yes = text == u"1" || text.compare(u"true", Qt::CaseInsensitive) == 0;
    const bool no = text == u"0" || text.compare(u"false", Qt::CaseInsensitive) == 0;
    value = (value || yes) && !no;
    return yes || no;
}
bool take(std::int32_t& value, const QString& text) {
    bool good = false;
    const int number = text.toInt(&good);
    if (good)
        value = number;
    return good;
}
bool take(std::optional<Sector>& sector, const QString& text) {
    const QStringList parts = text.split(u' ', Qt::SkipEmptyParts);
    if (parts.isEmpty()) {
        sector.reset();
        return true;
    }
    Sector read;
    const bool good = parts.size() == 3 && take(read.from, parts[0]) && take(read.to, parts[1]) &&
                      take(read.minutes, parts[2]) && read.from >= -359 && read.from <= read.to &&
                      read.to <= 359 && read.minutes >= 0 && read.minutes <= 99;
    if (good)
        sector = read;
    return good;
}

// Calls `visit(name, value)` for each value that the rules have.
template <class SomeRules, class Visit>
void forEach(SomeRules& rules, Visit visit) {
    for (const auto& [name, quantity, index] : kLimitNames)
        visit(name, rules.levels[quantity].limits[index]);
    for (const auto& [name, quantity, index] : kUnsafeNames)
        visit(name, rules.levels[quantity].unsafe[index]);
    for (const auto& [name, quantity, index] : kSectorNames)
        visit(name, rules.levels[quantity].sectors[index]);
    visit("WSDataOldUnsafe", rules.stationOldIsUnsafe);
    visit("NBDataOldUnsafe", rules.sensorFailedIsUnsafe);
    visit("BeyondLimitUnsafe", rules.beyondIsUnsafe);
    visit("SafeDelayVal", rules.safeDelaySeconds);
    visit("CloudAlarmDelay", rules.cloudDelaySeconds);
    visit("FlapClosures", rules.calm.closures);
    visit("FlapLongest", rules.calm.longestSeconds);
    visit("EarnFirstSafe", rules.calm.earnFirstSafe);
}

} // namespace

std::vector<RuleValue> ruleValues(const Rules& rules) {
    std::vector<RuleValue> values;
    forEach(rules, [&values](const char* name, const auto& value) {
        values.push_back({QString::fromLatin1(name), textOf(value)});
    });
    return values;
}

bool setRule(Rules& rules, const QString& name, const QString& text, QString& fault) {
    bool found = false;
    bool taken = false;
    forEach(rules, [&](const char* known, auto& value) {
        if (found || name.compare(QLatin1String(known), Qt::CaseInsensitive) != 0)
            return;
        found = true;
        taken = take(value, text.trimmed());
    });
    if (!found)
        fault = u"there is no limit, delay or sector "_s + name;
    else if (!taken)
        fault = u"%1 cannot be \"%2\""_s.arg(name, text);
    return taken;
}

QJsonObject rulesObject(const Rules& rules) {
    QJsonObject object;
    for (const RuleValue& value : ruleValues(rules))
        object[value.name] = value.text;
    return object;
}

void takeRules(Rules& rules, const QJsonObject& object) {
    QString fault;
    for (auto value = object.begin(); value != object.end(); ++value)
        setRule(rules, value.key(), value->toString(), fault);
}

QString ruleChanges(const Rules& before, const Rules& after) {
    const std::vector<RuleValue> was = ruleValues(before);
    const std::vector<RuleValue> is = ruleValues(after);
    const auto shown = [](const QString& text) {
        return text.isEmpty() ? u"none"_s : text;
    };
    QStringList changes;
    for (std::size_t i = 0; i < is.size(); ++i) {
        if (was[i] != is[i])
            changes += u"%1 %2 \u2192 %3"_s.arg(is[i].name, shown(was[i].text), shown(is[i].text));
    }
    return changes.join(u", "_s);
}

} // namespace skyhold
