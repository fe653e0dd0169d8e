// SPDX-License-Identifier: GPL-3.0-or-later
// Calls over the bus to an object with a member for every type, with any arguments. They take the
// whole way of a client's call: marshalled, taken apart, converted, answered and marshalled again.
#include "target.h"
#include "variants.h"

#include "bus/automation_server.h"
#include "bus/typed_interface.h"

#include <QDBusConnection>
#include <QDBusVariant>

#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace skyhold::fuzz {

namespace {

constexpr AutomationType kTypes[]{
    AutomationType::I4,   AutomationType::R8,     AutomationType::Bool,   AutomationType::Text,
    AutomationType::Date, AutomationType::Object, AutomationType::Variant};
const QString kProgram = u"Kiv_Skyhold.Fuzz"_s;
const QString kTyped = u"Kiv_Skyhold._Fuzz"_s;

// One of the forms that a value may have, all the way down.
bool isPlain(const QVariant& value) {
    if (value.metaType() == QMetaType::fromType<QList<QVariantList>>()) {
        const auto rows = value.value<QList<QVariantList>>();
        return std::ranges::all_of(
            rows, [](const QVariantList& row) { return std::ranges::all_of(row, isPlain); });
    }
    if (value.typeId() == QMetaType::QVariantList) {
        const QVariantList values = value.toList();
        return std::ranges::all_of(values, isPlain);
    }
    return !value.isValid() || value.typeId() == QMetaType::Int ||
           value.typeId() == QMetaType::Double || value.typeId() == QMetaType::Bool ||
           value.typeId() == QMetaType::QString ||
           value.metaType() == QMetaType::fromType<AutomationDate>() ||
           value.metaType() == QMetaType::fromType<QDBusObjectPath>();
}

void requireSoundConversions(const QVariant& value) {
    require(isPlain(value), "a value is in one of the known forms");
    for (const AutomationType type : kTypes) {
        const std::optional<QVariant> converted = convertTo(type, value);
        if (!converted)
            continue;
        require(hasType(*converted, type), "what converts has the type");
        require(type == AutomationType::Variant || convertTo(type, *converted) == converted,
                "what has the type stays as it is");
    }
    const std::optional<double> real = toReal(value);
    const std::optional<std::int32_t> whole = toInt32(value);
    if (real && whole)
        require(std::abs(*real - *whole) <= 0.5, "a whole number is the nearest");
    if (real)
        require(toBoolean(value) == (*real != 0), "zero alone is false");
    if (real || value.typeId() == QMetaType::QString)
        require(fromBus(toBus(value)) == value, "a plain value is sent as it is");
}

// A method, a get and a let of every type; what reaches them has it.
std::shared_ptr<const MemberTable> members() {
    auto table = std::make_shared<MemberTable>();
    std::int32_t id = 1;
    for (const AutomationType type : kTypes) {
        const auto echo = [type](QVariantList& arguments) {
            for (const QVariant& argument : std::as_const(arguments)) {
                require(hasType(argument, type), "an argument has its parameter's type");
                requireSoundConversions(argument);
            }
            return AutomationReply{arguments.value(0), AutomationError::None, {}};
        };
        const QString name = QString::number(static_cast<int>(type));
        table->add({u"Method"_s + name, id++, kMethod, type, {{u"x"_s, type, true}}, echo});
        table->add({u"Property"_s + name, id, kPropertyGet, AutomationType::Empty, {}, echo});
        table->add({u"Property"_s + name, id++, kPropertyPut, type, {{u"value"_s, type}}, echo});
    }
    return table;
}

class Served {
  public:
    Served()
        : bus_(QDBusConnection::sessionBus())
        , members_(members())
        , server_(bus_, kProgram, members_, [](int) {}) {
        for (InstanceInterface& interface : typedInterface(
                 kTyped, [this] { return typedInterfaceXml(kTyped, *members_, {}); }, members_))
            server_.addInterface(std::move(interface));
        if (!server_.start())
            broken("there is a bus (start this in dbus-run-session)");
        const QDBusMessage made =
            call(factoryPath(kProgram), QLatin1String(kFactoryInterface), u"CreateInstance"_s, {});
        instance_ = made.arguments().value(0).value<QDBusObjectPath>().path();
    }

    QDBusMessage call(const QString& path, const QString& interface, const QString& method,
                      const QVariantList& arguments) {
        QDBusMessage message =
            QDBusMessage::createMethodCall(bus_.baseService(), path, interface, method);
        message.setArguments(arguments);
        return bus_.call(message);
    }
    QDBusMessage call(const QString& interface, const QString& method,
                      const QVariantList& arguments) {
        return call(instance_, interface, method, arguments);
    }

  private:
    QDBusConnection bus_;
    std::shared_ptr<const MemberTable> members_;
    AutomationServer server_;
    QString instance_;
};

QVariantList arguments(Input& input) {
    QVariantList values;
    for (int count = 1 + (input.byte() % 8 == 0 ? input.byte() % 3 - 1 : 0); count > 0; --count)
        values.append(sentValue(input));
    return values;
}

void automationValue(QByteArrayView bytes) {
    static Served served;
    Input input(bytes);
    while (!input.atEnd()) {
        const QString number = QString::number(input.byte() % 9);
        const QString dispatch = QLatin1String(kDispatchInterface);
        QDBusMessage reply;
        switch (input.byte() % 6) {
        case 0:
            reply = served.call(kTyped, u"Method"_s + number, arguments(input));
            break;
        case 1:
            reply = served.call(dispatch, u"InvokeByName"_s,
                                {u"method"_s + number, uint{kMethod}, arguments(input)});
            break;
        case 2:
            reply = served.call(dispatch, u"Invoke"_s,
                                {input.byte() % 32, uint{input.byte()}, arguments(input)});
            break;
        case 3:
            reply = served.call(u"org.freedesktop.DBus.Properties"_s, u"Set"_s,
                                {kTyped, u"Property"_s + number,
                                 QVariant::fromValue(QDBusVariant(sentValue(input)))});
            break;
        case 4: // the number of arguments and their types are none of the interface's
            reply = served.call(dispatch, u"InvokeByName"_s, arguments(input));
            break;
        default: { // as a value that the sensor program answers
            requireSoundConversions(fromBus(arrivedValue(input)));
            continue;
        }
        }
        require(reply.type() == QDBusMessage::ReplyMessage ||
                    reply.type() == QDBusMessage::ErrorMessage,
                "every call is answered");
    }
}

} // namespace

const Target kAutomationValue{"automation_value", automationValue};

} // namespace skyhold::fuzz
