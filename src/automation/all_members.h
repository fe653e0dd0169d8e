// SPDX-License-Identifier: GPL-3.0-or-later
// The public members of this program's automation class, each once: name, number, kind, types,
// whether its call shows as activity, where its answer comes from, and what it does.
#pragma once

#include "automation/public_member.h"

namespace skyhold {

inline constexpr char kProgramId[] = "Kiv_Skyhold.Nubilo";

// In interface order, a property's get before its let.
std::vector<PublicMember> allMembers();

// The parts of the table, in its order.
void addControlMembers(MemberList& list); // state, control and identity
void addReadingMembers(MemberList& list); // readings and conditions
void addSettingMembers(MemberList& list); // settings properties
void addLastMembers(MemberList& list);

} // namespace skyhold
