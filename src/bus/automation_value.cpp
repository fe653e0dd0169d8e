// SPDX-License-Identifier: GPL-3.0-or-later
#include "bus/automation_value.h"

#include "platform/clock.h"
#include "platform/text_forms.h"

#include <QDBusMetaType>
#include <QDBusVariant>

#include <cmath>
#include <limits>

namespace skyhold {

namespace {

using TwoDimensions = QList<QVariantList>;

// Of numbers in texts, whatever the locale: programs write them, and "12,5" must not become 125.
const NumberForms kPlainForms{QStringLiteral("."), {}};

// Numbers and numeric text as a number; booleans count as -1 and 0.
std::optional<double> numberOf(const QVariant& value) {
    switch (value.typeId()) {
    case QMetaType::Bool:
        return value.toBool() ? -1.0 : 0.0;
    case QMetaType::Int:
    case QMetaType::Double: {
        const double number = value.toDouble();
        return std::isfinite(number) ? std::optional(number) : std::nullopt;
    }
    case QMetaType::QString:
        return numberFromText(value.toString(), kPlainForms);
    default:
        break;
    }
    if (value.metaType() == QMetaType::fromType<AutomationDate>()) {
        const double days = value.value<AutomationDate>().days;
        return std::isfinite(days) ? std::optional(days) : std::nullopt;
    }
    return std::nullopt;
}

bool isBooleanText(const QString& text, const char* word) {
    return text.trimmed().compare(QLatin1String(word), Qt::CaseInsensitive) == 0;
}

QVariant fromArgument(const QDBusArgument& argument) {
    const QString signature = argument.currentSignature();
    if (signature == QStringLiteral("(d)"))
        return QVariant::fromValue(qdbus_cast<AutomationDate>(argument));
    if (signature == QStringLiteral("av"))
        return fromBus(qdbus_cast<QVariantList>(argument));
    if (signature == QStringLiteral("aav")) {
        TwoDimensions rows = qdbus_cast<TwoDimensions>(argument);
        for (QVariantList& row : rows)
            row = fromBus(row);
        return QVariant::fromValue(rows);
    }
    return {};
}

} // namespace

QDBusArgument& operator<<(QDBusArgument& argument, const AutomationDate& date) {
    argument.beginStructure();
    argument << date.days;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, AutomationDate& date) {
    argument.beginStructure();
    argument >> date.days;
    argument.endStructure();
    return argument;
}

void registerAutomationTypes() {
    qDBusRegisterMetaType<AutomationDate>();
    qDBusRegisterMetaType<TwoDimensions>();
}

QVariant fromBus(const QVariant& value) {
    if (value.metaType() == QMetaType::fromType<QDBusVariant>())
        return fromBus(value.value<QDBusVariant>().variant());
    if (value.metaType() == QMetaType::fromType<QDBusArgument>())
        return fromArgument(value.value<QDBusArgument>());
    switch (value.typeId()) {
    case QMetaType::UChar:
    case QMetaType::Short:
    case QMetaType::UShort:
        return value.toInt();
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong: {
        const double number = value.toDouble();
        const bool fits = std::abs(number) <= std::numeric_limits<std::int32_t>::max();
        return fits ? QVariant(static_cast<int>(number)) : QVariant(number);
    }
    case QMetaType::QVariantList: {
        const QVariantList list = value.toList();
        return list.isEmpty() ? QVariant() : QVariant(fromBus(list));
    }
    case QMetaType::Int:
    case QMetaType::Double:
    case QMetaType::Bool:
    case QMetaType::QString:
        return value;
    default:
        break;
    }
    const bool known = value.metaType() == QMetaType::fromType<QDBusObjectPath>() ||
                       value.metaType() == QMetaType::fromType<AutomationDate>() ||
                       value.metaType() == QMetaType::fromType<TwoDimensions>();
    return known ? value : QVariant();
}

QVariantList fromBus(const QVariantList& values) {
    QVariantList plain;
    plain.reserve(values.size());
    for (const QVariant& value : values)
        plain.append(fromBus(value));
    return plain;
}

QVariant toBus(const QVariant& value) {
    if (!value.isValid())
        return QVariantList();
    if (value.typeId() == QMetaType::QVariantList)
        return toBus(value.toList());
    if (value.metaType() == QMetaType::fromType<TwoDimensions>()) {
        auto rows = value.value<TwoDimensions>();
        for (QVariantList& row : rows)
            row = toBus(row);
        return QVariant::fromValue(rows);
    }
    return value;
}

QVariantList toBus(const QVariantList& values) {
    QVariantList sent;
    sent.reserve(values.size());
    for (const QVariant& value : values)
        sent.append(toBus(value));
    return sent;
}

std::optional<std::int32_t> toInt32(const QVariant& value) {
    const std::optional<double> number = numberOf(value);
    if (!number) {
        const std::optional<bool> flag = toBoolean(value);
        return flag ? std::optional(*flag ? -1 : 0) : std::nullopt;
    }
    const double rounded = roundHalfEven(*number);
    if (rounded < std::numeric_limits<std::int32_t>::min() ||
        rounded > std::numeric_limits<std::int32_t>::max())
        return std::nullopt;
    return static_cast<std::int32_t>(rounded);
}

std::optional<double> toReal(const QVariant& value) {
    return numberOf(value);
}

std::optional<bool> toBoolean(const QVariant& value) {
    if (value.typeId() == QMetaType::QString) {
        if (isBooleanText(value.toString(), "true"))
            return true;
        if (isBooleanText(value.toString(), "false"))
            return false;
    }
    const std::optional<double> number = numberOf(value);
    return number ? std::optional(*number != 0) : std::nullopt;
}

std::optional<QString> toText(const QVariant& value) {
    switch (value.typeId()) {
    case QMetaType::QString:
        return value.toString();
    case QMetaType::Bool:
        return value.toBool() ? QStringLiteral("True") : QStringLiteral("False");
    default:
        break;
    }
    if (value.metaType() == QMetaType::fromType<AutomationDate>())
        return formatDate(fromDaySerial(value.value<AutomationDate>().days),
                          u"yyyy-mm-dd hh:mm:ss");
    const std::optional<double> number = numberOf(value);
    return number ? std::optional(numberText(*number, kPlainForms)) : std::nullopt;
}

std::optional<QVariant> convertTo(AutomationType type, const QVariant& value) {
    const auto wrap = [](const auto& converted) {
        return converted ? std::optional(QVariant(*converted)) : std::nullopt;
    };
    switch (type) {
    case AutomationType::I4:
        return wrap(toInt32(value));
    case AutomationType::R8:
        return wrap(toReal(value));
    case AutomationType::Bool:
        return wrap(toBoolean(value));
    case AutomationType::Text:
        return wrap(toText(value));
    case AutomationType::Date: {
        const std::optional<double> days = toReal(value);
        return days ? std::optional(QVariant::fromValue(AutomationDate{*days})) : std::nullopt;
    }
    case AutomationType::Object:
        if (value.metaType() == QMetaType::fromType<QDBusObjectPath>())
            return value;
        return std::nullopt;
    case AutomationType::Empty:
    case AutomationType::Variant:
        break;
    }
    return value;
}

ErrorForm errorForm(AutomationError error) {
    const auto named = [](const char* name, std::uint32_t code) {
        return ErrorForm{QStringLiteral("Kiv.Automation.Error.") + QLatin1String(name), code};
    };
    switch (error) {
    case AutomationError::UnknownName:
        return named("UnknownName", 0x80020006);
    case AutomationError::MemberNotFound:
        return named("MemberNotFound", 0x80020003);
    case AutomationError::BadParamCount:
        return named("BadParamCount", 0x8002000E);
    case AutomationError::TypeMismatch:
        return named("TypeMismatch", 0x80020005);
    case AutomationError::NoInterface:
        return named("NoInterface", 0x80004002);
    case AutomationError::Fail:
        return named("Fail", 0x80004005);
    case AutomationError::None:
    case AutomationError::Exception:
        break;
    }
    return named("Exception", 0x80020009);
}

QString errorMessage(AutomationError error, const QString& text) {
    const QString code = QString::number(errorForm(error).code, 16).toUpper();
    return QStringLiteral("0x%1: %2").arg(code, text);
}

QString factoryPath(const QString& programId) {
    QString path = programId;
    return u'/' + path.replace(u'.', u'/');
}

} // namespace skyhold
