// SPDX-License-Identifier: GPL-3.0-or-later
// Two processes, so that the end of one is never unseen: the guard, which the monitor has started
// and knows, and the worker, which alone reads the hand-off area with its password.
#pragma once

namespace skyhold {

// Runs `work` in the worker and answers with its exit status. When the worker dies without one
// (killed, crashed), the guard runs `afterDeath`. When the guard dies, the worker gets SIGTERM.
// When both are killed, none is left; then the lock shows it to the monitor.
// Returns in both processes.
int runGuarded(int (*work)(), void (*afterDeath)());

} // namespace skyhold
