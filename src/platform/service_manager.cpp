// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/service_manager.h"

#include <cstddef>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace skyhold {

namespace {

QByteArray taken(const char* variable) {
    QByteArray value = qgetenv(variable);
    qunsetenv(variable);
    return value;
}

} // namespace

ServiceManager::ServiceManager()
    : socket_(taken("NOTIFY_SOCKET")) {
    const QByteArray limit = taken("WATCHDOG_USEC");
    const QByteArray process = taken("WATCHDOG_PID");
    if (process.isEmpty() || process == QByteArray::number(::getpid()))
        limit_ = limit.toULongLong(); // 0 for what is no number
}

void ServiceManager::ready() const {
    send("READY=1");
}

void ServiceManager::roundDone(const QString& status) const {
    if (limit_ > 0)
        send("WATCHDOG=1");
    report(status);
}

void ServiceManager::report(const QString& status) const {
    // A line of the message is a field of its own.
    send("STATUS=" + QString(status).simplified().toUtf8());
}

void ServiceManager::expectRounds(bool expected) const {
    if (limit_ > 0)
        send("WATCHDOG_USEC=" + QByteArray::number(quint64{expected ? limit_ : 0}));
}

void ServiceManager::stopping() const {
    send("STOPPING=1");
}

// Never waits: a manager that does not read is no reason to hold a cycle up.
void ServiceManager::send(const QByteArray& message) const {
    sockaddr_un address{};
    const auto length = static_cast<std::size_t>(socket_.size());
    if (length < 2 || length > sizeof(address.sun_path) || (socket_[0] != '/' && socket_[0] != '@'))
        return;
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, socket_.constData(), length);
    if (socket_[0] == '@') // a name without a file
        address.sun_path[0] = '\0';
    const int channel = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (channel < 0)
        return;
    [[maybe_unused]] const ssize_t sent =
        ::sendto(channel, message.constData(), static_cast<std::size_t>(message.size()),
                 MSG_NOSIGNAL, reinterpret_cast<const sockaddr*>(&address),
                 static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + length));
    ::close(channel);
}

} // namespace skyhold
