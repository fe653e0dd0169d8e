#include "ctl/state_document.h"

#include <QDBusConnection>
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
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        fault = u"there is no session bus"_s;
        return {};
    }
    QDBusMessage call = QDBusMessage::createMethodCall(
        kService, kPath, u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    call.setAutoStartService(false);
    call << kInterface << u"State"_s;
    const QDBusMessage reply = bus.call(call, QDBus::Block, kPatienceMs);
    if (reply.type() != QDBusMessage::ReplyMessage) {
        fault = reply.errorName().contains(u"NoReply")
                    ? u"Kiv_Skyhold does not answer"_s
                    : u"Kiv_Skyhold does not run; start it with: skyholdctl start"_s;
        return {};
    }
    const QJsonObject document =
        parse(reply.arguments().value(0).value<QDBusVariant>().variant().toString());
    if (document.isEmpty())
        fault = u"Kiv_Skyhold gave an odd answer"_s;
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

Verdict verdictOf(const QJsonObject& document) {
    const QJsonObject sources = document[u"sources"_s].toObject();
    for (const QString& source : {u"sensor"_s, u"station"_s}) {
        if (sources[source].toObject()[u"state"_s] != u"ok"_s)
            return Verdict::Unknown;
    }
    if (document[u"safe"_s].toBool())
        return Verdict::Safe;
    const QString verdict = document[u"verdict"_s].toString();
    return verdict == u"unsafe" || verdict == u"waiting" ? Verdict::Unsafe : Verdict::Unknown;
}

} // namespace skyhold
