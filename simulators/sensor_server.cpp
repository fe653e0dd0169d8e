// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulators/sensor_server.h"

#include "sensorhost/sensor_members.h"

#include <QDBusVariant>
#include <QTimer>

#include <unistd.h>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr std::size_t kMaxLoggedCalls = 10'000;
constexpr int kSlowMemberMs = 3000;

QString useName(unsigned use) {
    switch (use) {
    case kMethod:
        return u"method"_s;
    case kPropertyGet:
        return u"get"_s;
    case kPropertyPut:
        return u"put"_s;
    case kRead:
        return u"read"_s;
    default:
        return QString::number(use);
    }
}

// The bus type and the value of an argument.
QString argumentText(const QVariant& argument) {
    if (argument.metaType() == QMetaType::fromType<QDBusVariant>())
        return argumentText(argument.value<QDBusVariant>().variant());
    switch (argument.typeId()) {
    case QMetaType::Bool:
        return u"b "_s + argument.toString();
    case QMetaType::UChar:
        return u"y %1"_s.arg(argument.toUInt());
    case QMetaType::Short:
        return u"n "_s + argument.toString();
    case QMetaType::UShort:
        return u"q "_s + argument.toString();
    case QMetaType::Int:
        return u"i "_s + argument.toString();
    case QMetaType::UInt:
        return u"u "_s + argument.toString();
    case QMetaType::LongLong:
        return u"x "_s + argument.toString();
    case QMetaType::ULongLong:
        return u"t "_s + argument.toString();
    case QMetaType::Double:
        return u"d "_s + argument.toString();
    case QMetaType::QString:
        return u"s \"%1\""_s.arg(argument.toString());
    default:
        break;
    }
    if (argument.metaType() == QMetaType::fromType<QDBusObjectPath>())
        return u"o "_s + argument.value<QDBusObjectPath>().path();
    if (argument.metaType() == QMetaType::fromType<QDBusArgument>())
        return argument.value<QDBusArgument>().currentSignature();
    return argument.typeId() == QMetaType::QVariantList ? u"av"_s
                                                        : QLatin1String(argument.typeName());
}

QString logLine(const QString& name, unsigned use, const QVariantList& arguments) {
    QStringList texts;
    for (const QVariant& argument : arguments)
        texts.append(argumentText(argument));
    return texts.isEmpty() ? u"%1(%2)"_s.arg(name, useName(use))
                           : u"%1(%2; %3)"_s.arg(name, useName(use), texts.join(u", "_s));
}

} // namespace

SensorServer::SensorServer(const QDBusConnection& bus, std::shared_ptr<const MemberTable> members,
                           Faults& faults)
    : AutomationServer(bus, sensorProgramId(), members, [](int) {})
    , members_(std::move(members))
    , faults_(faults) {}

std::optional<SensorServer::Call> SensorServer::callOf(const QDBusMessage& message) const {
    const QVariantList sent = message.arguments();
    const bool byName = message.signature() == u"suav"_s;
    if (!byName && message.signature() != u"iuav"_s)
        return std::nullopt;

    Call call;
    const QString below = message.path().mid(rootPath().size() + 1);
    if (below.startsWith(u"MForm"))
        call.object = QString(below).replace(u'/', u'.');
    call.use = sent[1].toUInt();
    call.arguments = qdbus_cast<QVariantList>(sent[2]);
    if (byName) {
        call.member = sent[0].toString();
        return call;
    }
    call.member = u"#%1"_s.arg(sent[0].toInt());
    if (call.object.isEmpty()) {
        for (const AutomationMember& member : members_->members()) {
            if (member.id == sent[0].toInt())
                call.member = member.name;
        }
    }
    return call;
}

bool SensorServer::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
    const QString interface = message.interface();
    if (!interface.isEmpty() && interface != QLatin1String(kDispatchInterface) &&
        interface != QLatin1String(kFactoryInterface))
        return AutomationServer::handleMessage(message, connection);

    const std::optional<Call> call = callOf(message);
    if (call) {
        if (call->member.startsWith(u"Sim_")) {
            answerSimulatorCall(*call, message, connection);
            return true;
        }
        const QString name =
            call->object.isEmpty() ? call->member : call->object + u'.' + call->member;
        log(logLine(name, call->use, call->arguments));
        dieWhenTold(call->member);
        if (faults_.has(u"failing-member"_s) &&
            faults_.value(u"failing-member"_s) == call->member) {
            connection.send(automationErrorReply(message, AutomationError::Exception, name));
            return true;
        }
    } else {
        log(message.member() + u"()"_s);
    }

    if (faults_.has(u"silent"_s)) {
        keptBack_.append(message);
        return true;
    }
    if (const int ms = lateness(call ? call->member : QString()); ms > 0) {
        QTimer::singleShot(ms, Qt::PreciseTimer, this,
                           [this, message, connection] { answer(message, connection); });
        return true;
    }
    return AutomationServer::handleMessage(message, connection);
}

int SensorServer::lateness(const QString& member) const {
    const bool slow = faults_.has(u"slow-member"_s) && faults_.value(u"slow-member"_s) == member;
    return slow ? kSlowMemberMs : faults_.number(u"late"_s, 0);
}

// The bus waits no longer for whether the message was understood, so a refusal is sent from here.
void SensorServer::answer(const QDBusMessage& message, const QDBusConnection& connection) {
    if (faults_.has(u"silent"_s))
        keptBack_.append(message);
    else if (!AutomationServer::handleMessage(message, connection))
        connection.send(message.createErrorReply(QDBusError::UnknownMethod,
                                                 u"No such method "_s + message.member()));
}

void SensorServer::answerSimulatorCall(const Call& call, const QDBusMessage& message,
                                       const QDBusConnection& connection) {
    QVariant result = QVariantList();
    if (call.member == u"Sim_Calls"_s) {
        QStringList lines(calls_.begin(), calls_.end());
        calls_.clear();
        result = lines.join(u'\n');
    } else if (call.member == u"Sim_Fault"_s) {
        const QString fault = fromBus(call.arguments).value(0).toString();
        if (!faults_.set(fault)) {
            const AutomationError error = AutomationError::Exception;
            connection.send(message.createErrorReply(
                errorForm(error).name, errorMessage(error, u"unknown fault "_s + fault)));
            return;
        }
        if (faults_.has(u"nameless"_s))
            QDBusConnection(connection).unregisterService(sensorProgramId());
    } else {
        const AutomationError error = AutomationError::UnknownName;
        connection.send(
            message.createErrorReply(errorForm(error).name, errorMessage(error, call.member)));
        return;
    }
    connection.send(message.createReply(
        {QVariant::fromValue(QDBusVariant(result)), QVariant(toBus(call.arguments))}));
    if (!faults_.has(u"silent"_s)) {
        for (const QDBusMessage& kept : std::exchange(keptBack_, {}))
            answer(kept, connection);
    }
}

void SensorServer::log(const QString& line) {
    if (calls_.size() >= kMaxLoggedCalls)
        calls_.pop_front();
    calls_.push_back(line);
}

void SensorServer::dieWhenTold(const QString& member) const {
    const QString at = faults_.value(u"die"_s);
    if (faults_.has(u"die"_s) && (at.isEmpty() || at == member))
        ::_exit(1);
}

} // namespace skyhold
