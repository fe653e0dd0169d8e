// SPDX-License-Identifier: GPL-3.0-or-later
#include "ctl/bus.h"

#include "bus/automation_value.h"

#include <csignal>
#include <unistd.h>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr unsigned kConnectPatienceSeconds = 5;

// Connecting to a bus that does not answer has no end of its own, and nothing is attached yet that
// would have to be put in order.
void endWithoutBus(int) {
    constexpr char kText[] = "skyholdctl: the session bus does not answer\n";
    // The exit status shows whether it can be read.
    [[maybe_unused]] const auto written = ::write(STDERR_FILENO, kText, sizeof kText - 1);
    ::_exit(2);
}

bool isTimeout(const QDBusError& error) {
    return error.type() == QDBusError::NoReply || error.type() == QDBusError::Timeout ||
           error.type() == QDBusError::TimedOut;
}

} // namespace

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

QString busFault(const QDBusConnection& bus) {
    return u"there is no session bus (%1); is DBUS_SESSION_BUS_ADDRESS set?"_s.arg(
        bus.lastError().message());
}

QString monitorFault(const QDBusError& error) {
    if (isAbsence(error))
        return u"Kiv_Skyhold is not running; start it with: skyholdctl start"_s;
    if (isTimeout(error))
        return u"Kiv_Skyhold does not answer; it may be suspended, or have just ended"_s;
    return u"Kiv_Skyhold cannot be called: "_s + error.message();
}

QString oddAnswer() {
    return u"Kiv_Skyhold gave an unexpected answer"_s;
}

} // namespace skyhold
