// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/quit_signals.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace skyhold {

namespace {

int wakeUp[2];

// A signal handler may do little more than write.
void onSignal(int) {
    const char byte = 0;
    [[maybe_unused]] const ssize_t wrote = ::write(wakeUp[1], &byte, 1);
}

} // namespace

void onQuitSignal(std::function<void()> quit) {
    if (::pipe2(wakeUp, O_CLOEXEC | O_NONBLOCK) != 0)
        return; // the signals then end the program as they always do
    auto* notifier =
        new QSocketNotifier(wakeUp[0], QSocketNotifier::Read, QCoreApplication::instance());
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [quit = std::move(quit)] {
        char byte = 0;
        [[maybe_unused]] const ssize_t got = ::read(wakeUp[0], &byte, 1);
        quit();
    });
    struct sigaction action {};
    action.sa_handler = onSignal;
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGTERM, &action, nullptr);
    ::sigaction(SIGINT, &action, nullptr);
    struct sigaction hangUp {};
    ::sigaction(SIGHUP, nullptr, &hangUp);
    if (hangUp.sa_handler != SIG_IGN)
        ::sigaction(SIGHUP, &action, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

} // namespace skyhold
