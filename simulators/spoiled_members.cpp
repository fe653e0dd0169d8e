// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulators/spoiled_members.h"

#include <limits>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;
using enum AutomationType;

// A value that no client can take for what the member should answer.
QVariant ofWrongType(AutomationType type) {
    return type == Text ? QVariant(QVariantList{1, 2}) : QVariant(u"wrong"_s);
}

QVariant spoiled(AutomationType type, const QVariant& value, const Faults& faults) {
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    if (type == Empty)
        return value;
    if (faults.has(u"wrong-types"_s))
        return ofWrongType(type);
    if (faults.has(u"empty"_s))
        return {};
    if (faults.has(u"megabyte"_s) && type == Text)
        return QString(1'000'000, u'm');
    if (faults.has(u"level"_s) && type == I4)
        return faults.number(u"level"_s, 9);
    if (faults.has(u"inf"_s) && type == R8)
        return std::numeric_limits<double>::infinity();
    if (faults.has(u"nan"_s) && type == R8)
        return kNan;
    if (faults.has(u"nan"_s) && type == Date)
        return QVariant::fromValue(AutomationDate{kNan});
    return value;
}

} // namespace

std::shared_ptr<MemberTable> spoiledMembers(const MemberTable& plain, const Faults& faults) {
    auto members = std::make_shared<MemberTable>();
    for (AutomationMember member : plain.members()) {
        member.act = [act = member.act, type = member.result, &faults](QVariantList& arguments) {
            AutomationReply reply = act(arguments);
            reply.result = spoiled(type, reply.result, faults);
            return reply;
        };
        members->add(std::move(member));
    }
    return members;
}

} // namespace skyhold
