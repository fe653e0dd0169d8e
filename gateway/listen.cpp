// SPDX-License-Identifier: GPL-3.0-or-later
#include "gateway/listen.h"

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

union AnyAddress {
    sockaddr any;
    sockaddr_in v4;
    sockaddr_in6 v6;
};

// False where the text is no address.
bool fill(AnyAddress& filled, socklen_t& size, const QByteArray& host, int port) {
    filled = {};
    const auto number = htons(static_cast<std::uint16_t>(port));
    if (::inet_pton(AF_INET, host.constData(), &filled.v4.sin_addr) == 1) {
        filled.v4.sin_family = AF_INET;
        filled.v4.sin_port = number;
        size = sizeof filled.v4;
        return true;
    }
    if (::inet_pton(AF_INET6, host.constData(), &filled.v6.sin6_addr) != 1)
        return false;
    filled.v6.sin6_family = AF_INET6;
    filled.v6.sin6_port = number;
    size = sizeof filled.v6;
    return true;
}

} // namespace

bool ListenAddress::loopback() const {
    AnyAddress address{};
    socklen_t size = 0;
    return fill(address, size, host, port) && isLoopback(&address.any);
}

std::optional<ListenAddress> parseListenAddress(const QString& text, QString& fault) {
    const qsizetype colon = text.lastIndexOf(u':');
    bool isNumber = false;
    const int port = text.mid(colon + 1).toInt(&isNumber);
    QString host = text.left(std::max<qsizetype>(colon, 0));
    if (host.startsWith(u'[') && host.endsWith(u']'))
        host = host.mid(1, host.size() - 2);
    AnyAddress address{};
    socklen_t size = 0;
    const ListenAddress parsed{host.toLatin1(), port};
    if (colon < 0 || !isNumber || port < 0 || port > 65535 ||
        !fill(address, size, parsed.host, port)) {
        fault = u"%1 is not an address and a port, such as 127.0.0.1:11111"_s.arg(text);
        return std::nullopt;
    }
    return parsed;
}

QByteArray shownAddress(const ListenAddress& address) {
    const bool v6 = address.host.contains(':');
    return (v6 ? '[' + address.host + ']' : address.host) + ':' + QByteArray::number(address.port);
}

QByteArray peerText(const sockaddr* address) {
    char text[INET6_ADDRSTRLEN] = {};
    if (address && address->sa_family == AF_INET) {
        ::inet_ntop(AF_INET, &reinterpret_cast<const sockaddr_in*>(address)->sin_addr, text,
                    sizeof text);
    } else if (address && address->sa_family == AF_INET6) {
        const in6_addr& wide = reinterpret_cast<const sockaddr_in6*>(address)->sin6_addr;
        if (IN6_IS_ADDR_V4MAPPED(&wide))
            ::inet_ntop(AF_INET, wide.s6_addr + 12, text, sizeof text);
        else
            ::inet_ntop(AF_INET6, &wide, text, sizeof text);
    }
    return text;
}

bool isLoopback(const sockaddr* address) {
    const QByteArray text = peerText(address);
    return text.startsWith("127.") || text == "::1";
}

int listenOn(ListenAddress& address, QString& fault) {
    AnyAddress wanted{};
    socklen_t size = 0;
    fill(wanted, size, address.host, address.port);
    const int descriptor =
        ::socket(wanted.any.sa_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    // A port whose last server has just ended can be had again, one that has a server cannot.
    const int on = 1;
    const int off = 0;
    if (descriptor >= 0) {
        ::setsockopt(descriptor, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
        if (wanted.any.sa_family == AF_INET6)
            ::setsockopt(descriptor, IPPROTO_IPV6, IPV6_V6ONLY, &off, sizeof off);
    }
    if (descriptor < 0 || ::bind(descriptor, &wanted.any, size) != 0 ||
        ::listen(descriptor, SOMAXCONN) != 0) {
        const QString reason = errno == EADDRINUSE ? u"another program listens there already"_s
                                                   : QString::fromLocal8Bit(std::strerror(errno));
        fault =
            u"cannot listen on %1: %2"_s.arg(QString::fromLatin1(shownAddress(address)), reason);
        if (descriptor >= 0)
            ::close(descriptor);
        return -1;
    }
    ::getsockname(descriptor, &wanted.any, &size);
    address.port =
        ntohs(wanted.any.sa_family == AF_INET ? wanted.v4.sin_port : wanted.v6.sin6_port);
    return descriptor;
}

} // namespace skyhold
