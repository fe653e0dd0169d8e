// SPDX-License-Identifier: GPL-3.0-or-later
#include "automation/public_member.h"

#include <algorithm>
#include <limits>

namespace skyhold {

std::int32_t rounded(double value) {
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(
        std::clamp<double>(roundHalfEven(value), Limits::min(), Limits::max()));
}

void MemberList::method(const QString& name, std::vector<AutomationParameter> parameters,
                        const MemberKind& kind, MemberAct act) {
    add(name, nextMethod_++, kMethod, kind, std::move(act));
    members_.back().parameters = std::move(parameters);
}

void MemberList::get(const QString& name, const MemberKind& kind, MemberAct get) {
    add(name, nextProperty_--, kPropertyGet, kind, std::move(get));
}

void MemberList::property(const QString& name, const MemberKind& kind, MemberAct get, MemberAct let,
                          bool letByReference) {
    const std::int32_t id = nextProperty_--;
    add(name, id, kPropertyGet, kind, std::move(get));
    add(name, id, kPropertyPut, kind, std::move(let));
    members_.back().result = AutomationType::Empty;
    members_.back().parameters = {{QStringLiteral("value"), kind.type, letByReference}};
}

void MemberList::add(const QString& name, std::int32_t id, MemberUse use, const MemberKind& kind,
                     MemberAct act) {
    PublicMember member;
    member.name = name;
    member.id = id;
    member.use = use;
    member.result = kind.type;
    member.activity = kind.activity;
    member.source = kind.source;
    member.help = kind.help;
    member.act = std::move(act);
    member.enumeration = kind.enumeration;
    members_.push_back(std::move(member));
}

} // namespace skyhold
