// SPDX-License-Identifier: GPL-3.0-or-later
#include "ctl/monitor_connection.h"

#include "ctl/bus.h"

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr char kProgramId[] = "Kiv_Skyhold.Nubilo";
constexpr int kStartPatienceMs = 30'000;

} // namespace

MonitorConnection::MonitorConnection(WhenAbsent absent)
    : bus_(connectToBus())
    , deadline_(kPatienceMs) {
    attach(absent);
}

MonitorConnection::~MonitorConnection() {
    if (!path_.isEmpty() && lost_.isEmpty()) {
        QDBusMessage release = QDBusMessage::createMethodCall(
            owner_, path_, QString::fromLatin1(kDispatchInterface), u"Release"_s);
        release.setAutoStartService(false);
        bus_.send(release);
    }
    // The instance would end with the connection in any case.
    QDBusConnection::disconnectFromBus(bus_.name());
}

void MonitorConnection::attach(WhenAbsent absent) {
    if (!bus_.isConnected()) {
        lost_ = busFault(bus_);
        return;
    }
    QDBusMessage reply = createInstance();
    if (absent == WhenAbsent::Start && isAbsence(QDBusError(reply))) {
        if (!startProgram())
            return;
        reply = createInstance();
    }
    if (reply.type() != QDBusMessage::ReplyMessage) {
        lost_ = monitorFault(QDBusError(reply));
        return;
    }
    owner_ = reply.service();
    path_ = reply.arguments().value(0).value<QDBusObjectPath>().path();
    if (path_.isEmpty() || owner_.isEmpty())
        lost_ = oddAnswer();
}

QDBusMessage MonitorConnection::createInstance() {
    const QString programId = QLatin1String(kProgramId);
    return send(QDBusMessage::createMethodCall(programId, factoryPath(programId),
                                               QString::fromLatin1(kFactoryInterface),
                                               u"CreateInstance"_s));
}

bool MonitorConnection::startProgram() {
    allow(kStartPatienceMs);
    QDBusMessage call =
        QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                                       u"org.freedesktop.DBus"_s, u"StartServiceByName"_s);
    call << QString::fromLatin1(kProgramId) << 0U;
    const QDBusMessage reply = send(call);
    allow(kPatienceMs);
    if (reply.type() == QDBusMessage::ReplyMessage)
        return true;
    lost_ = u"the bus cannot start Kiv_Skyhold (%1); start it with: Kiv_Skyhold --start"_s.arg(
        reply.errorMessage());
    return false;
}

QDBusMessage MonitorConnection::send(QDBusMessage call) {
    call.setAutoStartService(false);
    const auto left = static_cast<int>(deadline_.remainingTime());
    if (left <= 0)
        return call.createErrorReply(QDBusError::NoReply, u"timed out"_s);
    return bus_.call(call, QDBus::Block, left);
}

AutomationReply MonitorConnection::failure(const QDBusMessage& reply) {
    const QString name = reply.errorName();
    if (name.startsWith(u"Kiv.Automation.Error."_s))
        return {{}, AutomationError::Fail, reply.errorMessage()};
    lost_ = monitorFault(QDBusError(reply));
    return {{}, AutomationError::Fail, lost_};
}

AutomationReply MonitorConnection::invoke(const QString& name, unsigned use,
                                          QVariantList& arguments) {
    if (!lost_.isEmpty())
        return {{}, AutomationError::Fail, lost_};
    QDBusMessage call = QDBusMessage::createMethodCall(
        owner_, path_, QString::fromLatin1(kDispatchInterface), u"InvokeByName"_s);
    call << name << use << QVariant(toBus(arguments));
    const QDBusMessage reply = send(call);
    if (reply.type() != QDBusMessage::ReplyMessage)
        return failure(reply);
    if (reply.signature() != u"vav"_s)
        return {{}, AutomationError::Fail, oddAnswer()};
    const QVariant changed = fromBus(reply.arguments().at(1));
    if (changed.toList().size() == arguments.size())
        arguments = changed.toList();
    return {fromBus(reply.arguments().at(0)), AutomationError::None, {}};
}

AutomationReply MonitorConnection::introspection() {
    if (!lost_.isEmpty())
        return {{}, AutomationError::Fail, lost_};
    const QDBusMessage reply = send(QDBusMessage::createMethodCall(
        owner_, path_, u"org.freedesktop.DBus.Introspectable"_s, u"Introspect"_s));
    if (reply.type() != QDBusMessage::ReplyMessage)
        return failure(reply);
    return {reply.arguments().value(0), AutomationError::None, {}};
}

} // namespace skyhold
