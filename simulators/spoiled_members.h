// SPDX-License-Identifier: GPL-3.0-or-later
// Faults of what members answer.
#pragma once

#include "bus/automation_server.h"
#include "simulators/faults.h"

namespace skyhold {

// The same members; the faults "nan", "inf", "wrong-types", "empty", "megabyte" and "level" spoil
// every answer while they are in force.
std::shared_ptr<MemberTable> spoiledMembers(const MemberTable& plain, const Faults& faults);

} // namespace skyhold
