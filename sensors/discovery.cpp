// SPDX-License-Identifier: GPL-3.0-or-later
#include "sensors/discovery.h"

#include "sensors/indi_connection.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkDatagram>
#include <QNetworkInterface>
#include <QNetworkReply>
#include <QUdpSocket>

#include <cstdio>
#include <set>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr quint16 kAlpacaPort = 32227;
constexpr qsizetype kMostDevices = 200;
constexpr qsizetype kMostValues = 5000;
constexpr qint64 kAnswerLimit = 256LL << 10;

void serveEvents(double seconds, const std::function<bool()>& done) {
    QDeadlineTimer limit(static_cast<qint64>(seconds * 1000));
    while (!limit.hasExpired() && !done())
        QCoreApplication::processEvents(
            QEventLoop::WaitForMoreEvents,
            static_cast<int>(std::min<qint64>(limit.remainingTime(), 100)));
}

QString deviceCount(std::size_t count) {
    return count == 1 ? u"1 device"_s : u"%1 devices"_s.arg(count);
}

void print(const QString& line) {
    std::printf("%s\n", qUtf8Printable(line));
}

} // namespace

std::optional<std::vector<FoundDevice>> findIndiDevices(const QString& server, double seconds,
                                                        QString& fault, const QString& connect) {
    QMap<QString, FoundDevice> devices;
    QMap<QString, QMap<QString, FoundValue>> values;
    qsizetype count = 0;
    bool met = false;
    IndiConnection connection(server, 60);
    connection.Connected = [&] {
        met = true;
        connection.askFor({});
    };
    bool lost = false;
    connection.Lost = [&] {
        lost = true;
    };
    connection.Message = [&](const IndiMessage& message) {
        if (message.kind == IndiMessage::Kind::Delete || devices.size() > kMostDevices ||
            count > kMostValues)
            return;
        FoundDevice& device = devices[message.device];
        device.name = message.device;
        for (const IndiElement& element : message.elements) {
            if (message.property == u"CONNECTION" && element.name == u"CONNECT")
                device.connected = element.text == u"On";
            if (message.kind == IndiMessage::Kind::Define && message.device == connect &&
                message.property == u"CONNECTION" && element.name == u"CONNECT" &&
                !device.connected)
                connection.setSwitch(connect, message.property, element.name);
            if (message.type != u"Number" && message.type != u"Light")
                continue;
            FoundValue& value = values[message.device][message.property + u'.' + element.name];
            value.address = message.device + u'.' + message.property + u'.' + element.name;
            if (!element.label.isEmpty())
                value.label = element.label;
            value.text = element.text;
            ++count;
        }
    };
    connection.start();
    serveEvents(seconds, [&] { return lost; });
    if (!met) {
        fault = connection.trouble().isEmpty() ? u"no INDI server at %1 answers"_s.arg(server)
                                               : connection.trouble();
        return std::nullopt;
    }
    std::vector<FoundDevice> found;
    for (FoundDevice& device : devices) {
        for (const FoundValue& value : std::as_const(values[device.name]))
            device.values.push_back(value);
        found.push_back(device);
    }
    return found;
}

std::vector<FoundAlpaca> findAlpacaDevices(double seconds) {
    std::vector<FoundAlpaca> found;
    std::set<QString> servers;
    QNetworkAccessManager network;
    QUdpSocket socket;
    QObject::connect(&socket, &QUdpSocket::readyRead, &socket, [&] {
        while (socket.hasPendingDatagrams()) {
            const QNetworkDatagram datagram = socket.receiveDatagram(1024);
            const int port =
                QJsonDocument::fromJson(datagram.data()).object().value(u"AlpacaPort"_s).toInt();
            const QString url =
                u"http://%1:%2"_s
                    .arg(QHostAddress(datagram.senderAddress().toIPv4Address()).toString())
                    .arg(port);
            if (port <= 0 || port > 65535 || servers.size() > 50 || !servers.insert(url).second)
                continue;
            QNetworkRequest request(QUrl(url + u"/management/v1/configureddevices"_s));
            request.setTransferTimeout(static_cast<int>(seconds * 1000));
            QNetworkReply* reply = network.get(request);
            QObject::connect(reply, &QNetworkReply::finished, &socket, [&found, reply, url] {
                const QJsonArray devices = QJsonDocument::fromJson(reply->read(kAnswerLimit))
                                               .object()
                                               .value(u"Value"_s)
                                               .toArray();
                for (const auto& value : devices) {
                    const QJsonObject device = value.toObject();
                    found.push_back(
                        {url,
                         u"%1/%2"_s.arg(device.value(u"DeviceType"_s).toString().toLower())
                             .arg(device.value(u"DeviceNumber"_s).toInt()),
                         device.value(u"DeviceName"_s).toString()});
                }
                reply->deleteLater();
            });
        }
    });
    socket.bind(QHostAddress(QHostAddress::AnyIPv4), 0);
    const QByteArray question("alpacadiscovery1");
    socket.writeDatagram(question, QHostAddress(QHostAddress::LocalHost), kAlpacaPort);
    socket.writeDatagram(question, QHostAddress(QHostAddress::Broadcast), kAlpacaPort);
    const QList<QNetworkInterface> interfaces = QNetworkInterface::allInterfaces();
    for (const QNetworkInterface& interface : interfaces) {
        const QList<QNetworkAddressEntry> entries = interface.addressEntries();
        for (const QNetworkAddressEntry& entry : entries) {
            if (!entry.broadcast().isNull())
                socket.writeDatagram(question, entry.broadcast(), kAlpacaPort);
        }
    }
    serveEvents(seconds, [] { return false; });
    return found;
}

int listDevices(const QString& indiServer, double seconds) {
    QString fault;
    const std::optional<std::vector<FoundDevice>> indi =
        findIndiDevices(indiServer, seconds, fault);
    if (!indi)
        print(fault);
    else
        print(u"INDI server %1: %2"_s.arg(indiServer, deviceCount(indi->size())));
    for (const FoundDevice& device : indi.value_or(std::vector<FoundDevice>())) {
        print(u"\n%1 (%2)"_s.arg(device.name,
                                 device.connected ? u"connected"_s : u"not connected"_s));
        for (const FoundValue& value : device.values)
            print(u"  %1 = %2   %3"_s.arg(value.address, value.text, value.label));
    }
    const std::vector<FoundAlpaca> alpaca = findAlpacaDevices(seconds);
    print(u"\nAlpaca: %1"_s.arg(deviceCount(alpaca.size())));
    for (const FoundAlpaca& device : alpaca)
        print(u"  url = %1   device = %2   %3"_s.arg(device.url, device.device, device.name));
    std::fflush(stdout);
    return indi || !alpaca.empty() ? 0 : 1;
}

} // namespace skyhold
