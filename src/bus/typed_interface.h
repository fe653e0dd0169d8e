// SPDX-License-Identifier: GPL-3.0-or-later
// The members of a table as an ordinary D-Bus interface, for clients that know D-Bus and nothing of
// automation: property gets and lets as properties, methods with typed arguments.
#pragma once

#include "bus/automation_server.h"

#include <QList>
#include <QPair>

namespace skyhold {

inline constexpr char kDispIdAnnotation[] = "Kiv.Automation.DispId";
inline constexpr char kEnumerationAnnotation[] = "Kiv.Automation.Enumeration";

using Annotations = QList<QPair<QString, QString>>; // name, value

// The interface as introspection data. A method's by-reference arguments follow its result as
// outputs of the same name; every member is annotated with its id ("0x68030093").
QString typedInterfaceXml(const QString& name, const MemberTable& members,
                          const Annotations& annotations = {});

// The interface itself, and org.freedesktop.DBus.Properties for it. Names compare exactly here. A
// method is called with any types that convert; what it answers has the types of the introspection
// data. GetAll leaves out a property whose get fails. `xml` makes that data when it is asked for.
std::vector<InstanceInterface> typedInterface(const QString& name, std::function<QString()> xml,
                                              std::shared_ptr<const MemberTable> members);

} // namespace skyhold
