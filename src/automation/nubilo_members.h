// The public members of this program's automation class, each once: name, id, kind, types, whether
// its call shows as activity, and what it does.
#pragma once

#include "core/monitoring_core.h"
#include "platform/automation_server.h"

#include <memory>

namespace skyhold {

std::shared_ptr<const MemberTable> nubiloMembers(MonitoringCore& core);

} // namespace skyhold
