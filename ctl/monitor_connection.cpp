#include "ctl/monitor_connection.h"

#include <csignal>
#include <unistd.h>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr char kProgramId[] = "Kiv_Skyhold.Nubilo";
constexpr int kStartPatienceMs = 30'000;
constexpr unsigned kConnectPatienceSeconds = 5;

// Connecting to a bus that does not answer has no end of its own, and nothing is attached yet that
// would have to be put in order.
void endWithoutBus(int) {
    constexpr char kText[] = "skyholdctl: the session bus does not answer\n";
    // Whether it can be read or not, the exit status tells.
    [[maybe_unused]] const auto written = ::write(STDERR_FILENO, kText, sizeof kText - 1);
    ::_exit(2);
}

QDBusConnection connectToBus() {
    // Qt ends in the reverse order of what was used first: its thread for the bus, which needs the
    // registered types to its end, is to end before them.
    registerAutomationTypes();
    static int connections = 0;
    std::signal(SIGALRM, endWithoutBus);
    ::alarm(kConnectPatienceSeconds);
    QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus,
                                                        u"skyholdctl %1"_s.arg(++connections));
    ::alarm(0);
    return bus;
}

bool isAbsence(const QDBusError& error) {
    // What the bus answers for a name that nobody has, when it is not to start the program, has no
    // type of its own in Qt.
    return error.type() == QDBusError::ServiceUnknown ||
           error.name() == u"org.freedesktop.DBus.Error.NameHasNoOwner"_s;
}

bool isTimeout(const QDBusError& error) {
    return error.type() == QDBusError::NoReply || error.type() == QDBusError::Timeout ||
           error.type() == QDBusError::TimedOut;
}

QString reason(const QDBusError& error) {
    if (isAbsence(error))
        return u"Kiv_Skyhold is not running; start it with: skyholdctl start"_s;
    if (isTimeout(error))
        return u"Kiv_Skyhold does not answer; is it stopped, or has it ended just now?"_s;
    return u"Kiv_Skyhold cannot be asked: "_s + error.message();
}

AutomationReply oddAnswer() {
    return {{}, AutomationError::Fail, u"Kiv_Skyhold gave an odd answer"_s};
}

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
        lost_ = u"there is no session bus (%1); is DBUS_SESSION_BUS_ADDRESS set?"_s.arg(
            bus_.lastError().message());
        return;
    }
    QDBusMessage reply = createInstance();
    if (absent == WhenAbsent::Start && isAbsence(QDBusError(reply))) {
        if (!startProgram())
            return;
        reply = createInstance();
    }
    if (reply.type() != QDBusMessage::ReplyMessage) {
        lost_ = reason(QDBusError(reply));
        return;
    }
    owner_ = reply.service();
    path_ = reply.arguments().value(0).value<QDBusObjectPath>().path();
    if (path_.isEmpty() || owner_.isEmpty())
        lost_ = oddAnswer().text;
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
        return call.createErrorReply(QDBusError::NoReply, u"the time is over"_s);
    return bus_.call(call, QDBus::Block, left);
}

AutomationReply MonitorConnection::failure(const QDBusMessage& reply) {
    const QString name = reply.errorName();
    if (name.startsWith(u"Kiv.Automation.Error."_s))
        return {{}, AutomationError::Fail, reply.errorMessage()};
    lost_ = reason(QDBusError(reply));
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
        return oddAnswer();
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
