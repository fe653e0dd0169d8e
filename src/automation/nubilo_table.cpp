#include "automation/nubilo_table.h"

namespace skyhold {

std::vector<NubiloMember> nubiloTable() {
    MemberList list;
    addControlMembers(list);
    addReadingMembers(list);
    addSettingMembers(list);
    addLastMembers(list);
    return list.take();
}

} // namespace skyhold
