// What every Alpaca device has, the devices themselves, and the management API.
#include "gateway/alpaca.h"
#include "gateway/alpaca_members.h"

#include <QFile>
#include <QSysInfo>
#include <QUuid>

#include <unistd.h>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

AlpacaOutcome refusedCommand(const AlpacaCall&) {
    return alpacaError(AlpacaError::NotImplemented, u"This device has no commands"_s);
}

AlpacaOutcome action(const AlpacaCall& call) {
    const QString name = QString::fromUtf8(call.text("Action"));
    const char* const known = call.device.action;
    if (known && name.compare(QLatin1String(known), Qt::CaseInsensitive) == 0)
        return alpacaText(QString::fromUtf8(causesJson(call.view)));
    return alpacaError(AlpacaError::ActionNotImplemented,
                       u"There is no action %1; there is %2"_s.arg(
                           name, known ? QString::fromLatin1(known) : u"none"_s));
}

AlpacaOutcome connect(const AlpacaCall& call) {
    call.server.clients.set(call.client, true);
    return AlpacaResult();
}

AlpacaOutcome disconnect(const AlpacaCall& call) {
    call.server.clients.set(call.client, false);
    return AlpacaResult();
}

AlpacaOutcome setConnected(const AlpacaCall& call) {
    call.server.clients.set(call.client, call.boolean("Connected"));
    return AlpacaResult();
}

AlpacaOutcome connected(const AlpacaCall& call) {
    return alpacaBool(call.server.clients.has(call.client));
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
    {"action", true, Text, action, {{"Action"}, {"Parameters"}}},
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

QByteArray uniqueId(const AlpacaDevice& device) {
    constexpr QUuid kNamespace(0x4d0c5a5e, 0x95f3, 0x4b0b, 0x9c, 0x1f, 0x6b, 0x21, 0x7e, 0x42, 0xd8,
                               0x53);
    QByteArray computer = QSysInfo::machineUniqueId();
    if (computer.isEmpty())
        computer = QSysInfo::machineHostName().toUtf8();
    // Two users of a computer have a gateway each.
    return QUuid::createUuidV5(kNamespace,
                               computer + ' ' + QByteArray::number(::getuid()) + ' ' + device.type)
        .toByteArray(QUuid::WithoutBraces);
}

Answer managementRequest(const Request& request, AlpacaServer& server, const QByteArray& site) {
    QByteArray value;
    if (request.path == "/management/apiversions") {
        value = "[1]";
    } else if (request.path == "/management/v1/description") {
        value = R"({"ServerName":"Kiv_Skyhold gateway","Manufacturer":"Kiv_Skyhold",)"
                R"("ManufacturerVersion":")" SKYHOLD_VERSION R"(","Location":)" +
                site + '}';
    } else if (request.path == "/management/v1/configureddevices") {
        for (const AlpacaDevice& device : kDevices) {
            value += value.isEmpty() ? "[" : ",";
            value += QByteArray("{\"DeviceName\":\"") + device.name + "\",\"DeviceType\":\"" +
                     device.type + "\",\"DeviceNumber\":0,\"UniqueID\":\"" + uniqueId(device) +
                     "\"}";
        }
        value += ']';
    } else {
        return textAnswer(404, "There is no such page");
    }
    if (request.method != "GET")
        return textAnswer(400, "This can be read only");
    std::uint32_t client = 0;
    if (const auto text = parameter(request.query, "ClientTransactionID", true)) {
        bool fits = false;
        client = text->toUInt(&fits);
        if (!fits || text->startsWith('+'))
            return textAnswer(400, "ClientTransactionID takes a number from 0 to 4294967295");
    }
    return jsonAnswer(
        "{\"Value\":" + value + ",\"ClientTransactionID\":" + QByteArray::number(client) +
        ",\"ServerTransactionID\":" + QByteArray::number(++server.transactions) + '}');
}

} // namespace skyhold
