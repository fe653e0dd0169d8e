// SPDX-License-Identifier: GPL-3.0-or-later
// Date and time at the right end of the menu bar.
#pragma once

#include "core/monitoring_core.h"
#include "ui/widgets/readout.h"

#include <QTimer>

namespace skyhold {

// With seconds while a session runs, as the panel counts; without them while nothing counts.
class MenuClock : public Readout {
    Q_OBJECT

  public:
    // `core` outlives it.
    MenuClock(MonitoringCore& core, QWidget* parent);

    void showTime();
    // Takes up the letters of the menu bar.
    void grow();

  protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

  private:
    MonitoringCore& core_;
    QTimer next_; // while it is visible and no session runs
};

} // namespace skyhold
