// SPDX-License-Identifier: GPL-3.0-or-later
#include "bus/typed_interface.h"

#include <QDBusVariant>

namespace skyhold {

using namespace Qt::Literals::StringLiterals;

namespace {

QString signatureOf(AutomationType type) {
    switch (type) {
    case AutomationType::I4:
        return u"i"_s;
    case AutomationType::R8:
        return u"d"_s;
    case AutomationType::Bool:
        return u"b"_s;
    case AutomationType::Text:
        return u"s"_s;
    case AutomationType::Date:
        return u"(d)"_s;
    case AutomationType::Object:
        return u"o"_s;
    case AutomationType::Variant:
        return u"v"_s;
    case AutomationType::Empty:
        break;
    }
    return {};
}

QString annotationXml(const QString& indent, const QString& name, const QString& value) {
    return u"%1<annotation name=\"%2\" value=\"%3\"/>\n"_s.arg(indent, name, value.toHtmlEscaped());
}

QString idAnnotation(const AutomationMember& member) {
    const QString id = QString::number(static_cast<std::uint32_t>(member.id), 16).toUpper();
    return annotationXml(u"      "_s, QLatin1String(kDispIdAnnotation), u"0x"_s + id);
}

QString argumentXml(const QString& name, AutomationType type, const QString& direction,
                    const QString& enumeration = {}) {
    const QString start = u"      <arg name=\"%1\" type=\"%2\" direction=\"%3\""_s.arg(
        name, signatureOf(type), direction);
    if (enumeration.isEmpty())
        return start + u"/>\n"_s;
    return start + u">\n"_s +
           annotationXml(u"        "_s, QLatin1String(kEnumerationAnnotation), enumeration) +
           u"      </arg>\n"_s;
}

QString methodXml(const AutomationMember& member) {
    QString xml = u"    <method name=\"%1\">\n"_s.arg(member.name);
    for (const AutomationParameter& parameter : member.parameters)
        xml += argumentXml(parameter.name, parameter.type, u"in"_s);
    if (member.result != AutomationType::Empty)
        xml += argumentXml(u"result"_s, member.result, u"out"_s, member.enumeration);
    for (const AutomationParameter& parameter : member.parameters) {
        if (parameter.byReference)
            xml += argumentXml(parameter.name, parameter.type, u"out"_s);
    }
    return xml + idAnnotation(member) + u"    </method>\n"_s;
}

QString propertyXml(const AutomationMember& get, bool writable) {
    return u"    <property name=\"%1\" type=\"%2\" access=\"%3\">\n"_s.arg(
               get.name, signatureOf(get.result), writable ? u"readwrite"_s : u"read"_s) +
           idAnnotation(get) + u"    </property>\n"_s;
}

// A value in the form of the interface's type; nothing for one that does not have that type.
std::optional<QVariant> typedValue(AutomationType type, const QVariant& value) {
    if (type == AutomationType::Variant)
        return QVariant::fromValue(QDBusVariant(toBus(value)));
    return convertTo(type, value);
}

QDBusMessage notTyped(const QDBusMessage& message, const AutomationMember& member) {
    return automationErrorReply(message, AutomationError::Exception,
                                member.name + u": the value has the wrong type"_s);
}

QDBusMessage bareError(const QDBusMessage& message, const QString& name, const QString& text) {
    return message.createErrorReply(u"org.freedesktop.DBus.Error."_s + name, text);
}

class TypedMembers {
  public:
    TypedMembers(const QString& name, std::shared_ptr<const MemberTable> members)
        : name_(name)
        , members_(std::move(members)) {}

    std::optional<QDBusMessage> callMethod(const QDBusMessage& message) const {
        const AutomationMember* method = find(message.member(), kMethod);
        if (!method)
            return std::nullopt;
        QVariantList arguments = fromBus(message.arguments());
        const AutomationReply reply = members_->invoke(method->id, kMethod, arguments);
        if (!reply.ok())
            return automationErrorReply(message, reply.error, reply.text);

        QVariantList outputs;
        const auto add = [&outputs](AutomationType type, const QVariant& value) {
            const std::optional<QVariant> typed = typedValue(type, value);
            outputs.append(typed.value_or(QVariant()));
            return typed.has_value();
        };
        bool typed = method->result == AutomationType::Empty || add(method->result, reply.result);
        for (std::size_t i = 0; i < method->parameters.size(); ++i) {
            const AutomationParameter& parameter = method->parameters[i];
            if (parameter.byReference)
                typed = add(parameter.type, arguments[static_cast<qsizetype>(i)]) && typed;
        }
        return typed ? message.createReply(outputs) : notTyped(message, *method);
    }

    std::optional<QDBusMessage> useProperty(const QDBusMessage& message) const {
        const QString method = message.member();
        const QString signature = message.signature();
        const QVariantList arguments = message.arguments();
        const bool get = method == u"Get"_s && signature == u"ss"_s;
        const bool set = method == u"Set"_s && signature == u"ssv"_s;
        const bool getAll = method == u"GetAll"_s && signature == u"s"_s;
        if (!get && !set && !getAll)
            return std::nullopt;
        const QString interface = arguments[0].toString();
        if (!interface.isEmpty() && interface != name_)
            return bareError(message, u"UnknownInterface"_s,
                             u"No properties of interface "_s + interface);
        if (getAll)
            return message.createReply(QVariant(allProperties()));
        const QString name = arguments[1].toString();
        const AutomationMember* property = find(name, get ? kPropertyGet : kPropertyPut);
        if (property)
            return get ? getProperty(message, *property)
                       : setProperty(message, *property, arguments[2]);
        return find(name, kPropertyGet)
                   ? bareError(message, u"PropertyReadOnly"_s, name + u" cannot be set"_s)
                   : bareError(message, u"UnknownProperty"_s, u"No property "_s + name);
    }

  private:
    const AutomationMember* find(const QString& name, unsigned use) const {
        const std::optional<std::int32_t> id = members_->idOf(name);
        const AutomationMember* member = id ? members_->find(*id, use) : nullptr;
        return member && member->name == name ? member : nullptr;
    }

    QDBusMessage getProperty(const QDBusMessage& message, const AutomationMember& property) const {
        QVariantList none;
        const AutomationReply reply = members_->invoke(property.id, kPropertyGet, none);
        if (!reply.ok())
            return automationErrorReply(message, reply.error, reply.text);
        const std::optional<QVariant> value = typedValue(property.result, reply.result);
        return value ? message.createReply(QVariant::fromValue(QDBusVariant(*value)))
                     : notTyped(message, property);
    }

    QDBusMessage setProperty(const QDBusMessage& message, const AutomationMember& property,
                             const QVariant& value) const {
        QVariantList arguments{fromBus(value)};
        const AutomationReply reply = members_->invoke(property.id, kPropertyPut, arguments);
        return reply.ok() ? message.createReply()
                          : automationErrorReply(message, reply.error, reply.text);
    }

    QVariantMap allProperties() const {
        QVariantMap values;
        for (const AutomationMember& member : members_->members()) {
            if (member.use != kPropertyGet)
                continue;
            QVariantList none;
            const AutomationReply reply = members_->invoke(member.id, kPropertyGet, none);
            if (const auto value = typedValue(member.result, reply.result); reply.ok() && value)
                values.insert(member.name, *value);
        }
        return values;
    }

    QString name_;
    std::shared_ptr<const MemberTable> members_;
};

} // namespace

QString typedInterfaceXml(const QString& name, const MemberTable& members,
                          const Annotations& annotations) {
    QString xml = u"  <interface name=\"%1\">\n"_s.arg(name);
    for (const auto& [annotation, value] : annotations)
        xml += annotationXml(u"    "_s, annotation, value);
    // No signal reports changes: a client reads again.
    xml +=
        annotationXml(u"    "_s, u"org.freedesktop.DBus.Property.EmitsChangedSignal"_s, u"false"_s);
    for (const AutomationMember& member : members.members()) {
        if (member.use == kMethod)
            xml += methodXml(member);
        else if (member.use == kPropertyGet)
            xml += propertyXml(member, members.find(member.id, kPropertyPut) != nullptr);
    }
    return xml + u"  </interface>\n"_s;
}

std::vector<InstanceInterface> typedInterface(const QString& name, std::function<QString()> xml,
                                              std::shared_ptr<const MemberTable> members) {
    const auto typed = std::make_shared<const TypedMembers>(name, std::move(members));
    InstanceInterface methods{name, std::move(xml), [typed](const QDBusMessage& message) {
                                  return typed->callMethod(message);
                              }};
    InstanceInterface properties{u"org.freedesktop.DBus.Properties"_s, nullptr,
                                 [typed](const QDBusMessage& message) {
                                     return typed->useProperty(message);
                                 }};
    return {std::move(methods), std::move(properties)};
}

} // namespace skyhold
