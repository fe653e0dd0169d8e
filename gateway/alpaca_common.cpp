// SPDX-License-Identifier: GPL-3.0-or-later
// What every Alpaca device has, and the devices themselves.
#include "gateway/alpaca.h"
#include "gateway/alpaca_members.h"

#include <algorithm>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

AlpacaOutcome refusedCommand(const AlpacaCall&) {
    return alpacaError(AlpacaError::NotImplemented, u"This device has no commands"_s);
}

AlpacaOutcome action(const AlpacaCall& call) {
    constexpr qsizetype kMostShown = 40;
    const QString name = QString::fromUtf8(call.text("Action").left(kMostShown));
    const char* const known = call.device.action;
    if (known && name.compare(QLatin1String(known), Qt::CaseInsensitive) == 0)
        return alpacaText(QString::fromUtf8(causesJson(call.view)));
    return alpacaError(AlpacaError::ActionNotImplemented,
                       u"Action \"%1\" is unknown; known: %2"_s.arg(
                           name, known ? QString::fromLatin1(known) : u"none"_s));
}

AlpacaOutcome connect(const AlpacaCall& call) {
    call.server.clients.set(call.client(), true);
    return AlpacaResult();
}

AlpacaOutcome disconnect(const AlpacaCall& call) {
    call.server.clients.set(call.client(), false);
    return AlpacaResult();
}

AlpacaOutcome setConnected(const AlpacaCall& call) {
    call.server.clients.set(call.client(), call.boolean("Connected"));
    return AlpacaResult();
}

AlpacaOutcome connected(const AlpacaCall& call) {
    return alpacaBool(call.server.clients.has(call.client()));
}

AlpacaOutcome connecting(const AlpacaCall&) {
    return alpacaBool(false);
}

AlpacaOutcome deviceState(const AlpacaCall& call) {
    QByteArray list;
    auto state = call.device.state(call);
    if (const QString time = call.view.document()[u"time"_s].toString(); !time.isEmpty())
        state.emplaceBack("TimeStamp", jsonText(time));
    for (const auto& [name, value] : state) {
        list += list.isEmpty() ? "[" : ",";
        list += QByteArray("{\"Name\":\"") + name + "\",\"Value\":" + value + '}';
    }
    return AlpacaResult{.value = list.isEmpty() ? "[]" : list + ']'};
}

AlpacaOutcome description(const AlpacaCall& call) {
    return alpacaText(QString::fromUtf8(call.device.description));
}

AlpacaOutcome driverInfo(const AlpacaCall&) {
    return alpacaText(u"Kiv_Skyhold's gateway " SKYHOLD_VERSION ""_s);
}

// Of the form "major.minor", as clients expect it.
AlpacaOutcome driverVersion(const AlpacaCall&) {
    return alpacaText(QString::fromLatin1(SKYHOLD_VERSION).section(u'.', 0, 1));
}

AlpacaOutcome interfaceVersion(const AlpacaCall& call) {
    return alpacaNumber(call.device.interfaceVersion);
}

AlpacaOutcome name(const AlpacaCall& call) {
    return alpacaText(QString::fromUtf8(call.device.name));
}

AlpacaOutcome supportedActions(const AlpacaCall& call) {
    return AlpacaResult{.value = call.device.action ? QByteArray("[\"") + call.device.action + "\"]"
                                                    : QByteArray("[]")};
}

using enum AlpacaType;

constexpr AlpacaMember kCommon[] = {
    // Its Parameters are not asked for: clients leave them out where they have none.
    {"action", true, Text, action, {{"Action"}}},
    {"commandblind", true, None, refusedCommand, {{"Command"}, {"Raw", Bool}}},
    {"commandbool", true, Bool, refusedCommand, {{"Command"}, {"Raw", Bool}}},
    {"commandstring", true, Text, refusedCommand, {{"Command"}, {"Raw", Bool}}},
    {"connect", true, None, connect},
    {"connected", false, Bool, connected},
    {"connected", true, None, setConnected, {{"Connected", Bool}}},
    {"connecting", false, Bool, connecting},
    {"description", false, Text, description},
    {"devicestate", false, List, deviceState},
    {"disconnect", true, None, disconnect},
    {"driverinfo", false, Text, driverInfo},
    {"driverversion", false, Text, driverVersion},
    {"interfaceversion", false, Integer, interfaceVersion},
    {"name", false, Text, name},
    {"supportedactions", false, List, supportedActions},
};

const AlpacaDevice kDevices[] = {
    {"SafetyMonitor", "Kiv_Skyhold Safety", "Whether Kiv_Skyhold says that it is safe", 3,
     "SafetyEvents", safetyMembers(), safetyState},
    {"ObservingConditions", "Kiv_Skyhold Weather", "What Kiv_Skyhold measures", 2, nullptr,
     conditionsMembers(), conditionsState},
    {"Switch", "Kiv_Skyhold Roof", "The roof's switch, and what Kiv_Skyhold says", 3, nullptr,
     switchMembers(), switchState},
};

} // namespace

std::span<const AlpacaMember> commonMembers() {
    return kCommon;
}

std::span<const AlpacaDevice> alpacaDevices() {
    return kDevices;
}

const AlpacaDevice* alpacaDevice(QByteArrayView type) {
    const auto isLower = [](char letter) {
        return letter >= 'a' && letter <= 'z';
    };
    for (const AlpacaDevice& device : kDevices) {
        if (type.compare(device.type, Qt::CaseInsensitive) == 0)
            return std::ranges::all_of(type, isLower) ? &device : nullptr;
    }
    return nullptr;
}

} // namespace skyhold
