// SPDX-License-Identifier: GPL-3.0-or-later
// The member table at work on one core: what the bus calls.
#pragma once

#include "bus/automation_server.h"
#include "core/monitoring_core.h"

#include <memory>

namespace skyhold {

std::shared_ptr<const MemberTable> memberCalls(MonitoringCore& core);

} // namespace skyhold
