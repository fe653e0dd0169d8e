// SPDX-License-Identifier: GPL-3.0-or-later
#include "uploader/guard.h"

#include "uploader/quit_request.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace skyhold {

namespace {

int workUnder(pid_t guard, int (*work)()) {
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (::getppid() != guard)
        ::raise(SIGTERM); // it died before it could be watched
    return work();
}

// The worker's exit status; nothing but a negative number when it died without one.
int waitFor(pid_t worker) {
    siginfo_t ended{};
    while (::waitid(P_PID, static_cast<id_t>(worker), &ended, WEXITED | WNOWAIT) < 0 &&
           errno == EINTR) {
    }
    // Once the worker is gone its id may become another process's.
    passQuitSignalsOnTo(0);
    ::waitpid(worker, nullptr, 0);
    return ended.si_code == CLD_EXITED ? ended.si_status : -1;
}

} // namespace

int runGuarded(int (*work)(), void (*afterDeath)()) {
    // A signal waits until both processes know each other.
    sigset_t all;
    sigset_t before;
    ::sigfillset(&all);
    ::sigprocmask(SIG_BLOCK, &all, &before);
    const pid_t guard = ::getpid();
    const pid_t worker = ::fork();
    if (worker > 0)
        passQuitSignalsOnTo(worker);
    ::sigprocmask(SIG_SETMASK, &before, nullptr);
    if (worker < 0)
        return work();
    if (worker == 0)
        return workUnder(guard, work);
    const int status = waitFor(worker);
    if (status >= 0)
        return status;
    afterDeath();
    return EXIT_FAILURE;
}

} // namespace skyhold
