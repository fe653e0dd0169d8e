// SPDX-License-Identifier: GPL-3.0-or-later
#include "uploader/quit_request.h"

#include <atomic>
#include <cerrno>
#include <csignal>

namespace skyhold {

namespace {

std::atomic<bool> atOnce = false;
std::atomic<bool> afterThisFile = false;
std::atomic<pid_t> receiver = 0;
static_assert(std::atomic<pid_t>::is_always_lock_free); // for use in a signal handler

void onSignal(int number) {
    const int errorBefore = errno;
    afterThisFile = true;
    if (number != SIGUSR1)
        atOnce = true;
    if (const pid_t process = receiver; process > 0)
        ::kill(process, number);
    errno = errorBefore;
}

} // namespace

void catchQuitSignals() {
    struct sigaction action {};
    action.sa_handler = onSignal;
    action.sa_flags = SA_RESTART;
    for (const int number : {SIGTERM, SIGINT, SIGHUP, SIGUSR1})
        ::sigaction(number, &action, nullptr);
    // A server that goes away is an error of the transfer, a monitor that goes away none at all.
    ::signal(SIGPIPE, SIG_IGN);
}

bool quitAtOnce() {
    return atOnce;
}

bool quitAfterThisFile() {
    return afterThisFile;
}

void passQuitSignalsOnTo(pid_t process) {
    receiver = process;
}

} // namespace skyhold
