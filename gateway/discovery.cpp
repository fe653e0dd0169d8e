// SPDX-License-Identifier: GPL-3.0-or-later
#include "gateway/discovery.h"

#include "gateway/gateway_log.h"
#include "gateway/listen.h"
#include "gateway/state.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <sys/socket.h>
#include <unistd.h>

namespace skyhold {

namespace {

constexpr char kQuestion[] = "alpacadiscovery1";
constexpr char kGroup[] = "ff12::a1:9aca"; // where clients ask over IPv6
constexpr int kMostASecond = 50;

// Joins the group on every interface.
void join(int descriptor) {
    ipv6_mreq group{};
    ::inet_pton(AF_INET6, kGroup, &group.ipv6mr_multiaddr);
    struct if_nameindex* const interfaces = ::if_nameindex();
    for (const struct if_nameindex* one = interfaces; one && one->if_index != 0; ++one) {
        group.ipv6mr_interface = one->if_index;
        ::setsockopt(descriptor, IPPROTO_IPV6, IPV6_JOIN_GROUP, &group, sizeof group);
    }
    if (interfaces)
        ::if_freenameindex(interfaces);
}

bool sameNetwork(std::uint32_t a, std::uint32_t b, std::uint32_t mask) {
    return (a & mask) == (b & mask);
}

std::uint32_t v4(const sockaddr* address) {
    return reinterpret_cast<const sockaddr_in*>(address)->sin_addr.s_addr;
}

// Whether the peer is in the network of the address that the server listens on.
bool inNetworkOf(const QByteArray& host, const sockaddr* peer) {
    ifaddrs* all = nullptr;
    if (::getifaddrs(&all) != 0)
        return false;
    bool found = false;
    for (const ifaddrs* one = all; one && !found; one = one->ifa_next) {
        if (!one->ifa_addr || peerText(one->ifa_addr) != host)
            continue;
        if (one->ifa_addr->sa_family == AF_INET && peer->sa_family == AF_INET && one->ifa_netmask)
            found = sameNetwork(v4(one->ifa_addr), v4(peer), v4(one->ifa_netmask));
        else
            found = one->ifa_addr->sa_family == peer->sa_family;
    }
    ::freeifaddrs(all);
    return found;
}

bool reaches(const ListenAddress& http, const sockaddr* peer) {
    if (http.host == "::")
        return true;
    if (http.host == "0.0.0.0")
        return peer->sa_family == AF_INET;
    if (http.loopback())
        return isLoopback(peer) && (http.host == "::1") == (peer->sa_family == AF_INET6);
    return inNetworkOf(http.host, peer);
}

} // namespace

QByteArray discoveryAnswer(const QByteArray& message, int port) {
    if (!message.startsWith(kQuestion))
        return {};
    return "{\"AlpacaPort\":" + QByteArray::number(port) + '}';
}

Discovery::Discovery(int port, ListenAddress http)
    : http_(std::move(http)) {
    const bool v6 = http_.host.contains(':');
    if (!v6 || http_.host == "::")
        open(AF_INET, port);
    if (v6)
        open(AF_INET6, port);
}

Discovery::~Discovery() {
    for (const std::shared_ptr<Socket>& socket : std::as_const(sockets_)) {
        socket->notifier.reset();
        ::close(socket->descriptor);
    }
}

void Discovery::open(int family, int port) {
    const int descriptor = ::socket(family, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    const int on = 1;
    // Other programs of this computer may have devices too; each is asked.
    ::setsockopt(descriptor, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    sockaddr_in any4{};
    any4.sin_family = AF_INET;
    any4.sin_port = htons(static_cast<std::uint16_t>(port));
    sockaddr_in6 any6{};
    any6.sin6_family = AF_INET6;
    any6.sin6_port = any4.sin_port;
    int bound = -1;
    if (family == AF_INET6) {
        ::setsockopt(descriptor, IPPROTO_IPV6, IPV6_V6ONLY, &on, sizeof on);
        bound = ::bind(descriptor, reinterpret_cast<const sockaddr*>(&any6), sizeof any6);
        join(descriptor);
    } else {
        bound = ::bind(descriptor, reinterpret_cast<const sockaddr*>(&any4), sizeof any4);
    }
    if (descriptor < 0 || bound != 0) {
        qCWarning(gatewayLog) << "Alpaca clients do not find this gateway by themselves: UDP port"
                              << port << "is not available";
        if (descriptor >= 0)
            ::close(descriptor);
        return;
    }
    auto socket = std::make_shared<Socket>();
    socket->descriptor = descriptor;
    socket->notifier = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Read);
    QObject::connect(socket->notifier.get(), &QSocketNotifier::activated, socket->notifier.get(),
                     [this, descriptor] { answer(descriptor); });
    sockets_.append(std::move(socket));
}

void Discovery::answer(int descriptor) {
    char message[64];
    sockaddr_storage peer{};
    socklen_t size = sizeof peer;
    auto* const address = reinterpret_cast<sockaddr*>(&peer);
    const ssize_t length = ::recvfrom(descriptor, message, sizeof message, 0, address, &size);
    if (length <= 0 || !reaches(http_, address))
        return;
    const std::int64_t now = bootMs();
    if (now - secondMs_ >= 1000) {
        secondMs_ = now;
        answers_ = 0;
    }
    const QByteArray reply = discoveryAnswer(QByteArray(message, length), http_.port);
    if (!reply.isEmpty() && ++answers_ <= kMostASecond)
        ::sendto(descriptor, reply.constData(), static_cast<std::size_t>(reply.size()), 0, address,
                 size);
}

} // namespace skyhold
