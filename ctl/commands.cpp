// SPDX-License-Identifier: GPL-3.0-or-later
#include "ctl/commands.h"

#include "ctl/bus.h"
#include "ctl/output.h"
#include "ctl/state_document.h"
#include "ctl/status.h"
#include "ctl/values.h"
#include "ctl/verdict.h"
#include "ctl/watch.h"
#include "model/roof_status.h"
#include "platform/files.h"

#include <QCoreApplication>
#include <QJsonArray>

#include <algorithm>
#include <unistd.h>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

// How long the monitor may wait for its sensor program's first data (999 s), and a little.
constexpr int kStartPatienceMs = 1'020'000;

int fail(const QString& text) {
    printFault(text);
    return kStatusFailed;
}

// The member of that name; nothing when there is none or it cannot be asked for.
std::optional<Member> lookUp(MonitorConnection& monitor, const QString& name, QString& fault) {
    const std::vector<Member> members = describedMembers(monitor, fault);
    if (members.empty())
        return std::nullopt;
    const Member* member = findMember(members, name);
    if (member)
        return *member;
    fault = noSuchMember(members, name);
    return std::nullopt;
}

QString callFault(const Member& member, const AutomationReply& reply) {
    return member.name + u": "_s + plainLine(reply.text);
}

int runStatus(const Command& command) {
    QString fault;
    QJsonObject document = readStateDocument(fault);
    if (document.isEmpty())
        document = unreachableDocument(fault);
    if (command.json)
        writeLine(document);
    else
        write(statusText(document));
    return exitStatus(verdictOf(document));
}

// It ends with 0 whatever it says: the proxy takes a script that fails for no answer.
int runRoofStatus(const Command&) {
    QString fault;
    QJsonObject document = readStateDocument(fault);
    if (document.isEmpty())
        document = unreachableDocument(fault);
    const bool safe = verdictOf(document) == StatusVerdict::Safe;
    write(QString::fromUtf8(roofStatusJson(safe, document)) + u'\n');
    return 0;
}

int runGet(const Command& command) {
    MonitorConnection monitor;
    QString fault;
    const std::optional<Member> member = lookUp(monitor, command.arguments[0], fault);
    if (!member)
        return fail(fault);
    if (const QString hint = notReadable(*member); !hint.isEmpty())
        return fail(hint);
    QVariantList none;
    const AutomationReply reply = monitor.invoke(member->name, kRead, none);
    if (!reply.ok())
        return fail(callFault(*member, reply));
    if (command.json)
        writeLine(QJsonObject{{u"name"_s, member->name}, {u"value"_s, valueJson(reply.result)}});
    else
        writeLine(valueText(reply.result));
    return 0;
}

int runSet(const Command& command) {
    MonitorConnection monitor;
    QString fault;
    const std::optional<Member> member = lookUp(monitor, command.arguments[0], fault);
    if (!member)
        return fail(fault);
    if (!member->settable)
        return fail(member->name + u" cannot be set"_s);
    const QString& text = command.arguments[1];
    const std::optional<QVariant> value = parseValue(text, member->type);
    if (!value)
        return fail(u"%1: \"%2\" is not the %3 that it takes"_s.arg(member->name, plainLine(text),
                                                                    typeName(member->type)));
    QVariantList arguments{*value};
    AutomationReply reply = monitor.invoke(member->name, kPropertyPut, arguments);
    if (!reply.ok())
        return fail(callFault(*member, reply));
    // A member may take another value, and those of a sensor program that is not there take none.
    QVariantList none;
    reply = monitor.invoke(member->name, kPropertyGet, none);
    if (!reply.ok())
        return fail(callFault(*member, reply) + u" (while reading the value back)"_s);
    if (reply.result != *value)
        printFault(u"%1 is \"%2\" now, not \"%3\""_s.arg(member->name, valueText(reply.result),
                                                         plainLine(text)));
    return 0;
}

int runCall(const Command& command) {
    MonitorConnection monitor;
    QString fault;
    const std::optional<Member> member = lookUp(monitor, command.arguments[0], fault);
    if (!member)
        return fail(fault);
    if (member->property)
        return fail(u"%1 is a property; use: skyholdctl get %1"_s.arg(member->name));
    std::optional<QVariantList> arguments =
        parseArguments(*member, command.arguments.mid(1), fault);
    if (!arguments)
        return fail(fault);
    const AutomationReply reply = monitor.invoke(member->name, kMethod, *arguments);
    if (!reply.ok())
        return fail(callFault(*member, reply));
    if (command.json)
        writeLine(QJsonObject{{u"name"_s, member->name},
                              {u"result"_s, valueJson(reply.result)},
                              {u"arguments"_s, jsonArray(*arguments)}});
    else if (!isEmptyValue(reply.result))
        writeLine(valueText(reply.result));
    return 0;
}

int runList(const Command& command) {
    QString fault;
    std::vector<Member> members;
    {
        MonitorConnection monitor;
        members = describedMembers(monitor, fault);
    }
    if (members.empty())
        return fail(fault);
    const QString pattern = command.arguments.value(0);
    members = matchingMembers(members, pattern);
    if (members.empty())
        return fail(u"no member matches "_s + plainLine(pattern));
    if (command.json) {
        QJsonArray array;
        for (const Member& member : members)
            array.append(memberJson(member));
        writeLine(array);
        return 0;
    }
    qsizetype width = 0;
    for (const Member& member : members)
        width = std::max(width, member.name.size());
    QString text;
    for (const Member& member : members)
        text += memberLine(member, static_cast<int>(width)) + u'\n';
    write(text);
    return 0;
}

// Whether monitoring runs; nothing when the monitor does not say.
std::optional<bool> isRunning(MonitorConnection& monitor, QString& fault) {
    QVariantList none;
    const AutomationReply reply = monitor.invoke(u"DeviceIsRunning"_s, kMethod, none);
    if (reply.ok() && reply.result.typeId() == QMetaType::Bool)
        return reply.result.toBool();
    fault = reply.ok() ? oddAnswer() : reply.text;
    return std::nullopt;
}

int switchMonitoring(MonitorConnection& monitor, bool wanted, int patienceMs) {
    QString fault;
    // Asked at first too, so that a monitor that hangs is not waited for as long as one that
    // starts.
    if (!isRunning(monitor, fault))
        return fail(fault);
    monitor.allow(patienceMs);
    QVariantList none;
    const AutomationReply reply =
        monitor.invoke(wanted ? u"Device_Start"_s : u"Device_Stop"_s, kMethod, none);
    if (!reply.ok())
        return fail(plainLine(reply.text));
    monitor.allow(kPatienceMs);
    const std::optional<bool> running = isRunning(monitor, fault);
    if (!running)
        return fail(fault);
    if (*running != wanted)
        return fail(wanted ? u"monitoring did not start; the monitor shows why"_s
                           : u"monitoring did not stop"_s);
    return 0;
}

int runStart(const Command&) {
    MonitorConnection monitor(WhenAbsent::Start);
    return switchMonitoring(monitor, true, kStartPatienceMs);
}

int runStop(const Command&) {
    MonitorConnection monitor;
    return switchMonitoring(monitor, false, kPatienceMs);
}

// Another program takes over, with the same arguments.
int runHistoryProgram(const Command&) {
    const QString program = joinPath(programFolder(), u"skyholdctl-history"_s);
    QList<QByteArray> arguments;
    for (const QString& argument : QCoreApplication::arguments())
        arguments += argument.toLocal8Bit();
    std::vector<char*> pointers;
    for (QByteArray& argument : arguments)
        pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    ::execv(program.toLocal8Bit().constData(), pointers.data());
    return fail(program + u" cannot be started"_s);
}

int runHelp(const Command&) {
    write(usageText());
    return 0;
}

int runVersion(const Command&) {
    writeLine(u"skyholdctl %1.%2.%3"_s.arg(SKYHOLD_VERSION_MAJOR)
                  .arg(SKYHOLD_VERSION_MINOR, 2, 10, QChar(u'0'))
                  .arg(SKYHOLD_VERSION_REVISION, 3, 10, QChar(u'0')));
    return 0;
}

} // namespace

std::vector<Member> describedMembers(MonitorConnection& monitor, QString& fault) {
    const AutomationReply described = monitor.introspection();
    if (!described.ok()) {
        fault = described.text;
        return {};
    }
    std::vector<Member> members = parseMembers(described.result.toString());
    if (members.empty())
        fault = u"Kiv_Skyhold does not describe its members"_s;
    return members;
}

QString notReadable(const Member& member) {
    if (isReading(member))
        return {};
    if (!member.parameters.empty())
        return u"%1 takes arguments: %1%2; use: skyholdctl call"_s.arg(member.name,
                                                                       signatureText(member));
    return u"%1 is an action, not a value; use: skyholdctl call %1"_s.arg(member.name);
}

int runCommand(const Command& command) {
    const struct {
        const char16_t* name;
        int (*run)(const Command&);
    } commands[] = {{u"status", runStatus},
                    {u"roof-status", runRoofStatus},
                    {u"watch", runWatch},
                    {u"why", runHistoryProgram},
                    {u"history", runHistoryProgram},
                    {u"replay", runHistoryProgram},
                    {u"check-station", runHistoryProgram},
                    {u"fleet", runHistoryProgram},
                    {u"get", runGet},
                    {u"set", runSet},
                    {u"call", runCall},
                    {u"list", runList},
                    {u"start", runStart},
                    {u"stop", runStop},
                    {u"help", runHelp},
                    {u"version", runVersion}};
    for (const auto& row : commands) {
        if (command.name == row.name)
            return row.run(command);
    }
    return kStatusFailed;
}

} // namespace skyhold
