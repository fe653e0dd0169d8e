// SPDX-License-Identifier: GPL-3.0-or-later
// The interface for those who write clients: its identifiers, its condition enumerations, and all
// members, as the installed description and as a page to read. Both come from the member table.
#pragma once

#include <QString>

namespace skyhold {

inline constexpr char kInterfaceName[] = "Kiv_Skyhold._Nubilo";
inline constexpr char kInterfaceId[] = "{01B5312C-19B2-4625-A5FA-9422B298B627}";
inline constexpr char kClassId[] = "{A19EFED7-FC84-46E3-B954-5D8A4504FD32}";

// The typed interface as introspection data, with identifiers and enumerations as annotations.
QString nubiloInterfaceXml();

// Kiv_Skyhold.Nubilo.xml: introspection data of the class factory and of an instance.
QString interfaceDescription();

// docs/automation.md
QString automationReference();

} // namespace skyhold
