// SPDX-License-Identifier: GPL-3.0-or-later
#include "gateway/host_check.h"

#include <arpa/inet.h>
#include <unistd.h>

#include <algorithm>

namespace skyhold {

namespace {

bool isAddress(const QByteArray& text) {
    in6_addr any{};
    return ::inet_pton(AF_INET, text.constData(), &any) == 1 ||
           ::inet_pton(AF_INET6, text.constData(), &any) == 1;
}

bool isPort(QByteArrayView text) {
    return !text.isEmpty() && text.size() <= 5 &&
           std::ranges::all_of(text, [](char digit) { return digit >= '0' && digit <= '9'; });
}

} // namespace

QByteArray hostName(const QByteArray& header) {
    QByteArray name = header.trimmed().toLower();
    if (name.contains('\0'))
        return {};
    if (name.startsWith('[')) {
        const qsizetype end = name.indexOf(']');
        const QByteArray rest = end < 0 ? QByteArray() : name.sliced(end + 1);
        const QByteArray address = end < 0 ? QByteArray() : name.sliced(1, end - 1);
        const bool sound =
            address.contains(':') && isAddress(address) &&
            (rest.isEmpty() || (rest[0] == ':' && isPort(QByteArrayView(rest).sliced(1))));
        return sound ? address : QByteArray();
    }
    const qsizetype colon = name.indexOf(':');
    if (colon >= 0) {
        if (!isPort(QByteArrayView(name).sliced(colon + 1)))
            return {};
        name.truncate(colon);
    }
    if (name.endsWith('.'))
        name.chop(1);
    return name;
}

HostCheck::HostCheck(const QList<QByteArray>& more)
    : names_{"localhost"} {
    char own[256] = {};
    if (::gethostname(own, sizeof own - 1) == 0 && own[0] != '\0') {
        const QByteArray name = QByteArray(own).toLower();
        names_ += {name, name + ".local"};
    }
    for (const QByteArray& name : more)
        names_ += name.toLower();
}

bool HostCheck::allows(const QByteArray& header) const {
    const QByteArray name = hostName(header);
    return !name.isEmpty() && (isAddress(name) || names_.contains(name));
}

bool HostCheck::allowsOrigin(const QByteArray& origin, const QByteArray& host) const {
    if (origin.isEmpty())
        return true;
    const qsizetype scheme = origin.indexOf("://");
    return scheme > 0 && origin.sliced(scheme + 3).toLower() == host.trimmed().toLower();
}

} // namespace skyhold
