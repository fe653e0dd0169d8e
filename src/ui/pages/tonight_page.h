// SPDX-License-Identifier: GPL-3.0-or-later
// The page Tonight: the timeline of the night and its log, from the history and from the cycles
// that come while it is shown.
#pragma once

#include "ui/widgets/timeline.h"

#include <QElapsedTimer>
#include <QThreadPool>
#include <QTimer>
#include <QWidget>

class QButtonGroup;
class QPushButton;

namespace skyhold {

struct MonitoringCore;
class NightLog;

class TonightPage : public QWidget {
    Q_OBJECT

  public:
    TonightPage(MonitoringCore& core, QWidget* parent);
    ~TonightPage() override;

    // The buttons that choose a span of time; they stand wherever the owner puts them.
    QWidget* spanBar() { return bar_; }

    void choose(NightSpan span);

  protected:
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    // What the thread that reads answers.
    struct Answer {
        std::shared_ptr<Night> night;
        TimeRange shown;
    };

    void makeBar();
    void readSoon(int ms);
    void read();
    void take(const Answer& answer);
    // A cycle that the history may not have yet.
    void addLive();
    void showNight();
    void showState();
    void showBar();
    void showWhy(std::int64_t atMs);
    TimelineView viewOf(TimeRange shown) const;
    std::int64_t nowMs() const;

    MonitoringCore& core_;
    Timeline* timeline_;
    NightLog* log_;
    QWidget* bar_ = nullptr;
    QButtonGroup* spans_ = nullptr;
    QPushButton* backToNow_ = nullptr;

    std::optional<NightSpan> span_ = NightSpan::Tonight; // none: what the user went to
    bool atNow_ = true;
    TimeRange shown_;
    std::shared_ptr<Night> night_;
    QString fault_; // of the last read

    bool reading_ = false;
    bool again_ = false; // something changed while the thread read
    QTimer soon_;
    std::int64_t readAtMs_ = 0;
    QThreadPool pool_;
};

} // namespace skyhold
