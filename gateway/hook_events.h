// SPDX-License-Identifier: GPL-3.0-or-later
// What happens at the monitor, as the words that a hook is started with.
#pragma once

#include "gateway/state.h"

#include <QJsonObject>
#include <QStringList>

namespace skyhold {

// What the events are found from.
struct HookState {
    QString verdict; // "safe", "unsafe", "waiting", "stopped" (no session, or nothing is known)
    QStringList failed;
    QString alarm; // that sounds; empty: none

    bool operator==(const HookState&) const = default;
};

HookState hookState(const View& view);

// The events between two states in the order in which they are due, the verdict first: "unsafe",
// "waiting", "safe", "stopped", "source-failed", "source-back", "alarm". Of the first state,
// without one before it, the verdict, so that a hook that was not there learns it, and what is
// wrong.
QStringList eventsBetween(const HookState* before, const HookState& after);

} // namespace skyhold
