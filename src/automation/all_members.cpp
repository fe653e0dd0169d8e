// SPDX-License-Identifier: GPL-3.0-or-later
#include "automation/all_members.h"

namespace skyhold {

std::vector<PublicMember> allMembers() {
    MemberList list;
    addControlMembers(list);
    addReadingMembers(list);
    addSettingMembers(list);
    addLastMembers(list);
    return list.take();
}

} // namespace skyhold
