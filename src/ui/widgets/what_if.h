// SPDX-License-Identifier: GPL-3.0-or-later
// "What if": how the recorded week would have gone with the limits as they are set now.
#pragma once

#include "model/rules.h"
#include "replay/compare.h"

#include <QThreadPool>
#include <QWidget>

#include <atomic>
#include <memory>

class QLabel;
class QProgressBar;
class QPushButton;

namespace skyhold {

struct MonitoringCore;

// A button, and below it the progress and the answer. The replay runs on a thread of its own and
// ends with the widget.
class WhatIf : public QWidget {
  public:
    WhatIf(MonitoringCore& core, QWidget* parent);
    ~WhatIf() override;

  private:
    void startOrCancel();
    void show(const Comparison& comparison);

    MonitoringCore& core_;
    Rules before_; // to compare with, until a session has run by others
    QPushButton* button_;
    QProgressBar* progress_;
    QLabel* answer_;
    std::shared_ptr<std::atomic<bool>> cancelled_; // of the replay that runs; empty while none does
    QThreadPool pool_;
};

} // namespace skyhold
