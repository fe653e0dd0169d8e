// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/sudden_exit.h"

#include <utility>

namespace skyhold {

namespace {

struct Work {
    std::function<void()> run;

    ~Work() {
        if (run)
            std::exchange(run, nullptr)();
    }
};

// exit() destroys what belongs to its thread before it runs any handler or destroys anything that
// belongs to the process.
thread_local Work work;

} // namespace

void onSuddenExit(std::function<void()> run) {
    work.run = std::move(run);
}

} // namespace skyhold
