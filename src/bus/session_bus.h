// SPDX-License-Identifier: GPL-3.0-or-later
// The session bus, which may be missing at the start and may go and come back while the program
// runs.
#pragma once

#include <QDBusConnection>
#include <QTimer>

#include <functional>

namespace skyhold {

class SessionBus {
  public:
    // Connects; without a bus the connection is none.
    SessionBus();
    ~SessionBus();
    SessionBus(const SessionBus&) = delete;
    SessionBus& operator=(const SessionBus&) = delete;

    // Every return of the bus makes a new connection.
    const QDBusConnection& connection() const { return connection_; }

    // The bus has gone, and with it everybody who was on it.
    std::function<void()> lost;
    // It is there again, under the same address.
    std::function<void()> found;

  private:
    bool connectAgain();
    void watch();

    int connections_ = 0;
    QDBusConnection connection_;
    QTimer retry_; // runs while there is no bus
};

} // namespace skyhold
