// SPDX-License-Identifier: GPL-3.0-or-later
#include "automation/member_calls.h"

#include "automation/all_members.h"
#include "core/clients.h"

namespace skyhold {

namespace {

// What a getter answers while the sensor program is not connected.
QVariant nothingOf(AutomationType type) {
    switch (type) {
    case AutomationType::I4:
        return 0;
    case AutomationType::R8:
        return 0.0;
    case AutomationType::Bool:
        return false;
    case AutomationType::Text:
        return QString();
    default:
        return {};
    }
}

AutomationReply use(const PublicMember& member, MonitoringCore& core, QVariantList& arguments) {
    if (member.source == Source::Sensor && !core.sensor.connected())
        return answered(nothingOf(member.result));
    if (member.activity != Activity::None)
        BlinkLEDCOM(core.records.session, core.clock, kCallColour,
                    member.activity == Activity::SignalWithPeriod);
    return member.act(core, arguments);
}

} // namespace

std::shared_ptr<const MemberTable> memberCalls(MonitoringCore& core) {
    auto table = std::make_shared<MemberTable>();
    for (PublicMember& row : allMembers()) {
        AutomationMember member{row.name,       row.id, row.use,        row.result,
                                row.parameters, {},     row.enumeration};
        member.act = [&core, row = std::move(row)](QVariantList& arguments) {
            return use(row, core, arguments);
        };
        table->add(std::move(member));
    }
    return table;
}

} // namespace skyhold
