// SPDX-License-Identifier: GPL-3.0-or-later
// The verdict of now, large enough to be read from afar, or that there is none.
#pragma once

#include "core/monitoring_core.h"

class QWidget;

namespace skyhold {

constexpr int kVerdictHeight = 128;

struct VerdictView {
    QWidget* card;
    std::function<void()> tick;      // what it counts, each second
    std::function<void(qreal)> grow; // how many times as large as at 1280 by 800
};
VerdictView makeVerdictCard(MonitoringCore& core, QWidget* parent);

} // namespace skyhold
