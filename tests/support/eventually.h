// SPDX-License-Identifier: GPL-3.0-or-later
// Waits for what another process does; the deadline is far beyond what that takes.
#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QThread>

#include <functional>

namespace skyhold {

// True as soon as the condition holds; serves events meanwhile.
inline bool eventually(const std::function<bool()>& holds, int milliseconds = 20'000) {
    const QDeadlineTimer deadline(milliseconds);
    while (!holds() && !deadline.hasExpired()) {
        QCoreApplication::processEvents();
        QThread::msleep(2);
    }
    return holds();
}

} // namespace skyhold
