// SPDX-License-Identifier: GPL-3.0-or-later
// Alpaca's discovery: whoever asks for devices on UDP is answered with the port.
#pragma once

#include "gateway/http_server.h"

#include <QSocketNotifier>

#include <memory>

namespace skyhold {

class Discovery {
  public:
    // Listens on all addresses, since that is where broadcasts arrive, and answers only where
    // `http` can be reached from. Without the port it says so in the log and does nothing.
    Discovery(int port, ListenAddress http);
    ~Discovery();
    Discovery(const Discovery&) = delete;
    Discovery& operator=(const Discovery&) = delete;

  private:
    struct Socket {
        int descriptor = -1;
        std::unique_ptr<QSocketNotifier> notifier;
    };
    void open(int family, int port);
    void answer(int descriptor);

    ListenAddress http_;
    QList<std::shared_ptr<Socket>> sockets_;
    std::int64_t secondMs_ = 0; // answers are counted from it
    int answers_ = 0;
};

// What is answered to a message; empty: nothing.
QByteArray discoveryAnswer(const QByteArray& message, int port);

} // namespace skyhold
