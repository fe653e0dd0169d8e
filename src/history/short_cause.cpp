// SPDX-License-Identifier: GPL-3.0-or-later
#include "history/short_cause.h"

#include "platform/text_forms.h"

#include <cmath>

namespace skyhold {

using namespace Qt::Literals::StringLiterals;

namespace {

QString shortNumber(double value) {
    return numberText(std::round(value * 10) / 10, {});
}

std::optional<double> numberIn(const QJsonValue& value) {
    return value.isDouble() ? std::optional(value.toDouble()) : std::nullopt;
}

} // namespace

QString shortCause(const ShortCause& cause) {
    QString text = cause.name;
    if (!cause.label.isEmpty())
        text += u' ' + cause.label;
    if (cause.value && (cause.limit || cause.label.isEmpty()))
        text += u' ' + shortNumber(*cause.value);
    if (cause.limit)
        text += (cause.above ? u" > "_s : u" <= "_s) + shortNumber(*cause.limit);
    if (cause.value && cause.limit && !cause.unit.isEmpty())
        text += u' ' + cause.unit;
    return text;
}

QString shortCause(const QJsonObject& cause) {
    const QString kind = cause[u"kind"_s].toString();
    const QString name = cause[u"name"_s].toString();
    if (kind == u"delay")
        return u"waiting"_s;
    if (kind == u"roof")
        return u"roof"_s;
    if (kind == u"source")
        return name == u"station" ? u"station data"_s : u"sensor program"_s;
    if (kind != u"level" && kind != u"beyond")
        return cause[u"text"_s].toString();
    const std::optional<double> limit = numberIn(cause[u"limit"_s]);
    return shortCause(ShortCause{.name = QString(name).replace(u'_', u' '),
                                 .label = limit ? QString() : cause[u"label"_s].toString(),
                                 .value = numberIn(cause[u"value"_s]),
                                 .above = cause[u"relation"_s].toString() != u"<=",
                                 .limit = limit,
                                 .unit = cause[u"unit"_s].toString()});
}

} // namespace skyhold
