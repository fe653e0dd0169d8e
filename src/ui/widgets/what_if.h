// SPDX-License-Identifier: GPL-3.0-or-later
// "What if": how the recorded week would have gone with the limits as they are edited, beside how
// it went with those that are in force.
#pragma once

#include "model/rules.h"
#include "replay/compare.h"
#include "ui/widgets/timeline_data.h"

#include <QThreadPool>
#include <QTimer>
#include <QWidget>

#include <atomic>
#include <memory>

class QGridLayout;
class QLabel;
class QProgressBar;

namespace skyhold {

struct MonitoringCore;

// By one set of rules.
struct RulesResult {
    struct Span {
        int closures = 0;
        std::int64_t unsafeMs = 0;
    };
    Span day;                      // the last 24 hours
    Span week;                     // the last 7 days
    std::vector<BandSegment> band; // of that day
};

// Both ways of judging the same record.
struct WhatIfResult {
    TimeRange day;
    RulesResult inForce;
    RulesResult edited;
    bool differs = false; // the rules do
    QString fault;
};

class WhatIfBands;

// Judges while it is shown, and again after each change of the limits, on a thread of its own,
// which ends with the widget.
class WhatIf : public QWidget {
  public:
    WhatIf(MonitoringCore& core, QWidget* parent);
    ~WhatIf() override;

  protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

  private:
    void look();
    void judge(const Rules& edited);
    void cancel();
    void show(const WhatIfResult& result);
    void addRow(int row, const QString& caption, const QString& name);

    MonitoringCore& core_;
    Rules before_; // in force until a session has run by others
    Rules seen_;   // at the last look
    Rules judged_;
    WhatIfBands* bands_;
    QWidget* table_;
    QGridLayout* grid_;
    QProgressBar* progress_;
    QLabel* note_;
    QTimer again_;
    std::shared_ptr<std::atomic<bool>> cancelled_; // of the replay that runs
    QThreadPool pool_;
};

} // namespace skyhold
