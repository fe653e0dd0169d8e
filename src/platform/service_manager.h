// SPDX-License-Identifier: GPL-3.0-or-later
// What the service manager that started this program is to know (systemd, Type=notify): that the
// program is ready, what it does, and that its work goes on.
#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>

namespace skyhold {

class ServiceManager {
  public:
    // By the environment of a service (NOTIFY_SOCKET, WATCHDOG_USEC, WATCHDOG_PID), which is then
    // removed: the programs that this one starts do not speak for it. Elsewhere nothing is sent.
    ServiceManager();

    // To be followed by `expectRounds`: until then they are due.
    void ready() const;
    // `status` is one line for people.
    void report(const QString& status) const;
    // A round of work is done.
    void roundDone(const QString& status) const;
    // From now on rounds are due, or none are: without any, nobody waits for the next one.
    void expectRounds(bool expected) const;
    // The program ends and may take a while.
    void stopping() const;

  private:
    void send(const QByteArray& message) const;

    QByteArray socket_;       // its address; empty: none
    std::uint64_t limit_ = 0; // µs that a round may take; 0: nobody waits
};

} // namespace skyhold
