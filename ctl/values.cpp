// SPDX-License-Identifier: GPL-3.0-or-later
#include "ctl/values.h"

#include "platform/clock.h"
#include "platform/text_forms.h"

#include <cmath>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;
using Table = QList<QVariantList>;

template <typename Type>
bool holds(const QVariant& value) {
    return value.metaType() == QMetaType::fromType<Type>();
}

QString joined(const QVariantList& values, QChar separator) {
    QStringList texts;
    for (const QVariant& value : values)
        texts.append(valueText(value));
    return texts.join(separator);
}

std::optional<QVariant> parseInteger(const QString& text) {
    bool valid = false;
    const bool hexadecimal = text.startsWith(u"0x"_s, Qt::CaseInsensitive);
    const int number = text.toInt(&valid, hexadecimal ? 16 : 10);
    return valid ? std::optional(QVariant(number)) : std::nullopt;
}

std::optional<QVariant> parseReal(const QString& text) {
    bool valid = false;
    const double number = text.toDouble(&valid);
    return valid && std::isfinite(number) ? std::optional(QVariant(number)) : std::nullopt;
}

std::optional<QVariant> parseBoolean(const QString& text) {
    for (const bool flag : {false, true}) {
        if (text.compare(flag ? u"true"_s : u"false"_s, Qt::CaseInsensitive) == 0)
            return QVariant(flag);
    }
    return std::nullopt;
}

} // namespace

QString typeName(AutomationType type) {
    switch (type) {
    case AutomationType::I4:
        return u"integer"_s;
    case AutomationType::R8:
        return u"number"_s;
    case AutomationType::Bool:
        return u"boolean"_s;
    case AutomationType::Text:
        return u"text"_s;
    case AutomationType::Date:
        return u"time"_s;
    case AutomationType::Object:
        return u"object"_s;
    case AutomationType::Variant:
        return u"any"_s;
    case AutomationType::Empty:
        break;
    }
    return {};
}

std::optional<QVariant> parseValue(const QString& text, AutomationType type) {
    switch (type) {
    case AutomationType::I4:
        return parseInteger(text);
    case AutomationType::R8:
        return parseReal(text);
    case AutomationType::Bool:
        return parseBoolean(text);
    case AutomationType::Text:
    case AutomationType::Variant:
        return text;
    case AutomationType::Date:
    case AutomationType::Object:
    case AutomationType::Empty:
        break;
    }
    return std::nullopt;
}

bool isEmptyValue(const QVariant& value) {
    return !value.isValid() ||
           (value.typeId() == QMetaType::QVariantList && value.toList().isEmpty());
}

QString valueText(const QVariant& value) {
    if (holds<QDBusObjectPath>(value))
        return value.value<QDBusObjectPath>().path();
    if (holds<AutomationDate>(value)) {
        const QDateTime time = fromDaySerial(value.value<AutomationDate>().days);
        return time.isValid() ? formatDate(time, u"yyyy-mm-dd hh:mm:ss") : QString();
    }
    if (holds<Table>(value)) {
        QStringList rows;
        for (const QVariantList& row : value.value<Table>())
            rows.append(joined(row, u'\t'));
        return rows.join(u'\n');
    }
    switch (value.typeId()) {
    case QMetaType::Bool:
        return value.toBool() ? u"true"_s : u"false"_s;
    case QMetaType::Int:
        return QString::number(value.toInt());
    case QMetaType::Double:
        return numberText(value.toDouble(), {});
    case QMetaType::QVariantList:
        return joined(value.toList(), u'\n');
    default:
        return plainLine(value.toString());
    }
}

QJsonValue valueJson(const QVariant& value) {
    if (isEmptyValue(value))
        return {};
    if (holds<QDBusObjectPath>(value))
        return value.value<QDBusObjectPath>().path();
    if (holds<AutomationDate>(value)) {
        const QDateTime time = fromDaySerial(value.value<AutomationDate>().days);
        return time.isValid() ? QJsonValue(time.toString(Qt::ISODate)) : QJsonValue();
    }
    if (holds<Table>(value)) {
        QJsonArray rows;
        for (const QVariantList& row : value.value<Table>())
            rows.append(jsonArray(row));
        return rows;
    }
    switch (value.typeId()) {
    case QMetaType::Bool:
        return value.toBool();
    case QMetaType::Int:
        return value.toInt();
    case QMetaType::Double: {
        const double number = value.toDouble();
        return std::isfinite(number) ? QJsonValue(number) : QJsonValue();
    }
    case QMetaType::QString:
        return value.toString();
    case QMetaType::QVariantList:
        return jsonArray(value.toList());
    default:
        return {};
    }
}

QJsonArray jsonArray(const QVariantList& values) {
    QJsonArray array;
    for (const QVariant& value : values)
        array.append(valueJson(value));
    return array;
}

} // namespace skyhold
