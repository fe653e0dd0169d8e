// SPDX-License-Identifier: GPL-3.0-or-later
// The members of the automation interface, as an instance's introspection data describes them.
#pragma once

#include "bus/automation_value.h"

#include <QJsonObject>

#include <vector>

namespace skyhold {

struct MemberParameter {
    QString name;
    AutomationType type = AutomationType::Variant;
};

struct Member {
    QString name;
    bool property = false; // else a method
    bool settable = false;
    AutomationType type = AutomationType::Empty; // of the property or the method's result
    QString enumeration;                         // that the result's numbers belong to
    std::vector<MemberParameter> parameters;
};

// The members of the interface `Kiv_Skyhold._Nubilo` in their order; none when the text does not
// describe it.
std::vector<Member> parseMembers(const QString& xml);

// By name without regard to case; nothing when there is none.
const Member* findMember(const std::vector<Member>& members, const QString& name);

// "there is no member Saef; did you mean Safe?"
QString noSuchMember(const std::vector<Member>& members, const QString& name);

// The name that needs the fewest slips of a finger (a letter wrong, missing, too much, or two
// exchanged) to become `name`; nothing when even that one is not a likely slip.
std::optional<QString> nearestName(const QString& name, const QStringList& names);

// True for a member that answers a value and does nothing besides: one to get and to watch.
bool isReading(const Member& member);

// The members whose names match, without regard to case: a pattern with "*", "?" or "[" as a
// whole, any other as a part of the name.
std::vector<Member> matchingMembers(const std::vector<Member>& members, const QString& pattern);

// "(info text, ref text) -> text", "integer"
QString signatureText(const Member& member);
// A line of the list: name, kind and signature in columns.
QString memberLine(const Member& member, int nameWidth);
QJsonObject memberJson(const Member& member);

// The values of the arguments, in the types of the member's parameters. Nothing when they do not
// fit; `fault` says why.
std::optional<QVariantList> parseArguments(const Member& member, const QStringList& texts,
                                           QString& fault);

} // namespace skyhold
