// SPDX-License-Identifier: GPL-3.0-or-later
// Reads from the history how long each level has lasted since noon.
#pragma once

#include "history/level_times.h"

#include <QObject>
#include <QThreadPool>
#include <QTimer>

#include <functional>

class QWidget;

namespace skyhold {

struct MonitoringCore;

// While its page is shown and the history is written it reads each minute what has been added; on a
// thread of its own, which ends with it.
class TonightTimes : public QObject {
  public:
    TonightTimes(MonitoringCore& core, QWidget* page, std::function<void(const LevelTimes&)> show);
    ~TonightTimes() override;

    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void read();

    MonitoringCore& core_;
    std::function<void(const LevelTimes&)> show_;
    LevelTimes times_;
    std::int64_t noonMs_ = 0; // of which `times_` are
    bool reading_ = false;
    QTimer again_;
    QThreadPool pool_;
};

} // namespace skyhold
