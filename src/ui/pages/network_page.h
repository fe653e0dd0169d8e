// SPDX-License-Identifier: GPL-3.0-or-later
// The page "Network": the gateway that brings the state to browsers and other programs.
#pragma once

#include "records/network_controls.h"

class QWidget;

namespace skyhold {

QWidget* makeNetworkPage(NetworkControls& network, QWidget* parent);

} // namespace skyhold
