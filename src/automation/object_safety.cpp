// SPDX-License-Identifier: GPL-3.0-or-later
#include "automation/object_safety.h"

#include <array>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr char kInterface[] = "Kiv.Automation.IObjectSafety";
constexpr char kXml[] = R"(  <interface name="Kiv.Automation.IObjectSafety">
    <method name="GetInterfaceSafetyOptions">
      <arg name="iid" type="s" direction="in"/>
      <arg name="supported" type="u" direction="out"/>
      <arg name="enabled" type="u" direction="out"/>
    </method>
    <method name="SetInterfaceSafetyOptions">
      <arg name="iid" type="s" direction="in"/>
      <arg name="mask" type="u" direction="in"/>
      <arg name="enabled" type="u" direction="in"/>
    </method>
  </interface>
)";

constexpr std::uint32_t kSupported = kSafeForScripting | kSafeForInitialization;
constexpr char16_t kDispatchId[] = u"{00020400-0000-0000-C000-000000000046}";
constexpr std::array kPersistenceIds{
    u"{0000010A-0000-0000-C000-000000000046}", // storage
    u"{00000109-0000-0000-C000-000000000046}", // stream
    u"{37D84F60-42CB-11CE-8135-00AA004BB851}", // property bag
};

// The option that an interface has, 0 for none.
std::uint32_t optionOf(const QString& interfaceId) {
    const QString id = interfaceId.toUpper();
    if (id == kDispatchId)
        return kSafeForScripting;
    for (const char16_t* persistence : kPersistenceIds) {
        if (id == persistence)
            return kSafeForInitialization;
    }
    return 0;
}

bool isSet(const ObjectSafety& safety, std::uint32_t option) {
    return option == kSafeForScripting ? safety.forScripting : safety.forInitialization;
}

QDBusMessage noInterface(const QDBusMessage& message) {
    return automationErrorReply(message, AutomationError::NoInterface, u"no such interface"_s);
}

std::optional<QDBusMessage> answer(const ObjectSafety& safety, const QDBusMessage& message) {
    const QString method = message.member();
    const QString signature = message.signature();
    const QVariantList arguments = message.arguments();
    if (method == u"GetInterfaceSafetyOptions"_s && signature == u"s"_s) {
        const auto options = GetInterfaceSafetyOptions(safety, arguments[0].toString());
        return options ? message.createReply({options->supported, options->enabled})
                       : noInterface(message);
    }
    if (method != u"SetInterfaceSafetyOptions"_s || signature != u"suu"_s)
        return std::nullopt;
    const AutomationError error = SetInterfaceSafetyOptions(
        safety, arguments[0].toString(), arguments[1].toUInt(), arguments[2].toUInt());
    if (error == AutomationError::None)
        return message.createReply();
    return error == AutomationError::NoInterface
               ? noInterface(message)
               : automationErrorReply(message, error, u"these options are not supported"_s);
}

} // namespace

std::optional<SafetyOptions> GetInterfaceSafetyOptions(const ObjectSafety& safety,
                                                       const QString& interfaceId) {
    const std::uint32_t option = optionOf(interfaceId);
    if (option == 0)
        return std::nullopt;
    return SafetyOptions{kSupported, isSet(safety, option) ? option : 0};
}

AutomationError SetInterfaceSafetyOptions(const ObjectSafety& safety, const QString& interfaceId,
                                          std::uint32_t mask, std::uint32_t enabled) {
    const std::uint32_t option = optionOf(interfaceId);
    if (option == 0)
        return AutomationError::NoInterface;
    return (mask & enabled) == option && isSet(safety, option) ? AutomationError::None
                                                               : AutomationError::Fail;
}

InstanceInterface objectSafetyInterface(const ObjectSafety& safety) {
    return {QLatin1String(kInterface), objectSafetyXml, [safety](const QDBusMessage& message) {
                return answer(safety, message);
            }};
}

QString objectSafetyXml() {
    return QString::fromLatin1(kXml);
}

} // namespace skyhold
