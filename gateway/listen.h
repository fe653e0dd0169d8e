// SPDX-License-Identifier: GPL-3.0-or-later
// The socket that the server listens on.
#pragma once

#include "gateway/http_server.h"

#include <netinet/in.h>

namespace skyhold {

// An address of a peer as text: "192.168.1.5", also where an IPv6 socket wraps it.
QByteArray peerText(const sockaddr* address);
bool isLoopback(const sockaddr* address);

// The descriptor, or -1 with the reason. Port 0 becomes a free one.
int listenOn(ListenAddress& address, QString& fault);

} // namespace skyhold
