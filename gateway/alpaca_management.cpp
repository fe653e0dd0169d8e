// SPDX-License-Identifier: GPL-3.0-or-later
// What Alpaca says of the gateway as a whole: itself and its devices.
#include "gateway/alpaca.h"

#include <QSysInfo>
#include <QUuid>

#include <unistd.h>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

QByteArray descriptionJson(const QString& site) {
    return R"({"ServerName":"Kiv_Skyhold gateway","Manufacturer":"Kiv_Skyhold",)"
           R"("ManufacturerVersion":")" SKYHOLD_VERSION R"(","Location":)" +
           jsonText(site) + '}';
}

QByteArray devicesJson() {
    QByteArray list;
    for (const AlpacaDevice& device : alpacaDevices()) {
        list += list.isEmpty() ? "[" : ",";
        list += QByteArray("{\"DeviceName\":\"") + device.name + "\",\"DeviceType\":\"" +
                device.type + "\",\"DeviceNumber\":0,\"UniqueID\":\"" + uniqueId(device) + "\"}";
    }
    return list + ']';
}

} // namespace

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

Answer managementRequest(const Request& request, AlpacaServer& server, const QString& site) {
    QByteArray value;
    if (request.path == "/management/apiversions")
        value = "[1]";
    else if (request.path == "/management/v1/description")
        value = descriptionJson(site);
    else if (request.path == "/management/v1/configureddevices")
        value = devicesJson();
    else
        return textAnswer(400, "There is no such path of the management API, version 1");
    if (request.method != "GET")
        return textAnswer(400, "The verb is GET");
    QByteArray fault;
    const auto ids = readAlpacaIds(request.query, true, fault);
    if (!ids)
        return textAnswer(400, fault);
    return jsonAnswer(
        "{\"Value\":" + value + ",\"ClientTransactionID\":" + QByteArray::number(ids->transaction) +
        ",\"ServerTransactionID\":" + QByteArray::number(++server.transactions) + '}');
}

} // namespace skyhold
