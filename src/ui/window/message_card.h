// SPDX-License-Identifier: GPL-3.0-or-later
// What the panel says of the verdict: its cause and the delay, who decides when the rules do not,
// the alarm messages, and Stop Alarm.
#pragma once

#include "core/monitoring_core.h"

#include <functional>
#include <vector>

class QWidget;

namespace skyhold {

class Readout;

struct MessageView {
    QWidget* card;
    std::function<void(qreal)> grow; // how many times as large as at 1280 by 800
};
// `ofSession` gets the readouts that have a colour only while a session runs.
MessageView makeMessageCard(MonitoringCore& core, QWidget* parent,
                            std::vector<Readout*>& ofSession);

} // namespace skyhold
