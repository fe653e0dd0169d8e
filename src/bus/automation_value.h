// SPDX-License-Identifier: GPL-3.0-or-later
// Values of the automation interfaces and their form on the bus.
//
// A value is a QVariant holding one of: nothing (empty), int, double, bool, QString,
// AutomationDate, QDBusObjectPath (object), QVariantList (array of one dimension) or
// QList<QVariantList> (array of two dimensions, outer index first).
#pragma once

#include "platform/automation_date.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDateTime>
#include <QString>
#include <QVariant>

#include <cstdint>
#include <optional>

namespace skyhold {

QDBusArgument& operator<<(QDBusArgument& argument, const AutomationDate& date);
const QDBusArgument& operator>>(const QDBusArgument& argument, AutomationDate& date);

enum class AutomationType { Empty, I4, R8, Bool, Text, Date, Object, Variant };

// Registers the bus types; needed once before the first call in either direction.
void registerAutomationTypes();

// A value as it came off the bus (numbers of any width, structures, nested variants) as one of the
// forms above. What does not have any of them (another structure, a dictionary, a signature)
// becomes an empty value.
QVariant fromBus(const QVariant& value);
QVariantList fromBus(const QVariantList& values);
// The form to send: an empty value, in an array too, becomes an array without elements.
QVariant toBus(const QVariant& value);
QVariantList toBus(const QVariantList& values);

// Conversions as a parameter's type needs them: between numbers, numeric text and booleans (true
// is -1); to integers with halves to even; dates count as their day number. A number in a text has
// "." as its decimal sign and no thousands separators, whatever the locale. Nothing for what does
// not convert, and nothing for a number that is not finite or does not fit.
std::optional<std::int32_t> toInt32(const QVariant& value);
std::optional<double> toReal(const QVariant& value);
std::optional<bool> toBoolean(const QVariant& value);
std::optional<QString> toText(const QVariant& value);
std::optional<QVariant> convertTo(AutomationType type, const QVariant& value);

// Kinds of use of a member; a bit set on the wire. Read is a method or a property get, whichever
// the member is.
enum MemberUse : unsigned { kMethod = 1, kPropertyGet = 2, kPropertyPut = 4, kRead = 3 };

enum class AutomationError {
    None,
    UnknownName,
    MemberNotFound,
    BadParamCount,
    TypeMismatch,
    Exception,
    NoInterface,
    Fail
};

struct ErrorForm {
    QString name;       // the error's name on the bus
    std::uint32_t code; // 0x80020006 and so on
};
ErrorForm errorForm(AutomationError error);
// "0x80020006: text"
QString errorMessage(AutomationError error, const QString& text);

// What a call answers: a result or an error.
struct AutomationReply {
    QVariant result;
    AutomationError error = AutomationError::None;
    QString text; // of the error
    bool ok() const { return error == AutomationError::None; }
};

inline constexpr char kDispatchInterface[] = "Kiv.Automation.Dispatch";
inline constexpr char kFactoryInterface[] = "Kiv.Automation.ClassFactory";

// "/" + the identifier with "." as "/".
QString factoryPath(const QString& programId);

} // namespace skyhold
