// SPDX-License-Identifier: GPL-3.0-or-later
// Alpaca's SafetyMonitor: the verdict. It is never an error, and asks for no connection.
#include "gateway/alpaca_members.h"

namespace skyhold {

namespace {

AlpacaOutcome isSafe(const AlpacaCall& call) {
    return alpacaBool(call.view.safe());
}

constexpr AlpacaMember kMembers[] = {{"issafe", false, AlpacaType::Bool, isSafe}};

} // namespace

std::span<const AlpacaMember> safetyMembers() {
    return kMembers;
}

AlpacaState safetyState(const AlpacaCall& call) {
    return {{"IsSafe", call.view.safe() ? "true" : "false"}};
}

} // namespace skyhold
