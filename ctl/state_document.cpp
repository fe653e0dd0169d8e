// SPDX-License-Identifier: GPL-3.0-or-later
#include "ctl/state_document.h"

#include "ctl/bus.h"

#include <QDBusMessage>
#include <QDBusVariant>
#include <QJsonArray>
#include <QJsonDocument>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

const QString kService = u"Kiv_Skyhold.Nubilo"_s;
const QString kPath = u"/Kiv_Skyhold/Monitor"_s;
const QString kInterface = u"Kiv.Skyhold.Monitor1"_s;
constexpr int kPatienceMs = 5000;

QJsonObject parse(const QString& text) {
    return QJsonDocument::fromJson(text.toUtf8()).object();
}

} // namespace

QJsonObject readStateDocument(QString& fault) {
    // A connection of its own each time: one that was lost with its bus stays lost.
    const QDBusConnection bus = connectToBus();
    QDBusMessage call = QDBusMessage::createMethodCall(
        kService, kPath, u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    call.setAutoStartService(false);
    call << kInterface << u"State"_s;
    const QDBusMessage reply = bus.call(call, QDBus::Block, kPatienceMs);
    QJsonObject document;
    if (!bus.isConnected())
        fault = busFault(bus);
    else if (reply.type() != QDBusMessage::ReplyMessage)
        fault = monitorFault(QDBusError(reply));
    else if (document =
                 parse(reply.arguments().value(0).value<QDBusVariant>().variant().toString());
             document.isEmpty())
        fault = oddAnswer();
    QDBusConnection::disconnectFromBus(bus.name());
    return document;
}

QJsonObject unreachableDocument(const QString& reason) {
    return {{u"schema"_s, 1},
            {u"session"_s, u"idle"_s},
            {u"safe"_s, false},
            {u"verdict"_s, u"none"_s},
            {u"causes"_s,
             QJsonArray{QJsonObject{
                 {u"kind"_s, u"session"_s}, {u"name"_s, QString()}, {u"text"_s, reason}}}}};
}

} // namespace skyhold
