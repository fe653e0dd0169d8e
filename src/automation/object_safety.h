// SPDX-License-Identifier: GPL-3.0-or-later
// Whether clients that ask first (scripting hosts) may use the instances: IObjectSafety.
#pragma once

#include "bus/automation_server.h"

namespace skyhold {

struct ObjectSafety {
    bool forScripting = false;
    bool forInitialization = false;
};

// Bits of the safety options.
inline constexpr std::uint32_t kSafeForScripting = 1;
inline constexpr std::uint32_t kSafeForInitialization = 2;

struct SafetyOptions {
    std::uint32_t supported = 0;
    std::uint32_t enabled = 0;
};

// `interfaceId` is "{00020400-...}" in any case. Nothing for an interface that has no such options.
std::optional<SafetyOptions> GetInterfaceSafetyOptions(const ObjectSafety& safety,
                                                       const QString& interfaceId);

// Changes nothing: None when exactly the option that the interface has is asked for and is set,
// Fail when not, NoInterface for an interface that has no such options.
AutomationError SetInterfaceSafetyOptions(const ObjectSafety& safety, const QString& interfaceId,
                                          std::uint32_t mask, std::uint32_t enabled);

// "Kiv.Automation.IObjectSafety" of every instance.
InstanceInterface objectSafetyInterface(const ObjectSafety& safety);
QString objectSafetyXml();

} // namespace skyhold
