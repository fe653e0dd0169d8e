// SPDX-License-Identifier: GPL-3.0-or-later
// The members of each Alpaca device.
#pragma once

#include "gateway/alpaca.h"

namespace skyhold {

using AlpacaState = QList<std::pair<const char*, QByteArray>>;

std::span<const AlpacaMember> safetyMembers();
AlpacaState safetyState(const AlpacaCall& call);

std::span<const AlpacaMember> conditionsMembers();
AlpacaState conditionsState(const AlpacaCall& call);

std::span<const AlpacaMember> switchMembers();
AlpacaState switchState(const AlpacaCall& call);

} // namespace skyhold
