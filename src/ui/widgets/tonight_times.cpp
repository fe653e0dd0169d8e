// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/tonight_times.h"

#include "core/monitoring_core.h"
#include "history/reader.h"

#include <QEvent>
#include <QWidget>

#include <utility>

namespace skyhold {

namespace {

constexpr int kAgainMs = 60'000;

std::int64_t lastNoonMs(const QDateTime& now) {
    QDateTime noon(now.date(), QTime(12, 0));
    if (now < noon)
        noon = QDateTime(now.date().addDays(-1), QTime(12, 0));
    return noon.toMSecsSinceEpoch();
}

} // namespace

TonightTimes::TonightTimes(MonitoringCore& core, QWidget* page,
                           std::function<void(const LevelTimes&)> show)
    : QObject(page)
    , core_(core)
    , show_(std::move(show)) {
    pool_.setMaxThreadCount(1);
    again_.setInterval(kAgainMs);
    connect(&again_, &QTimer::timeout, this, &TonightTimes::read);
    page->installEventFilter(this);
}

TonightTimes::~TonightTimes() {
    pool_.waitForDone();
}

bool TonightTimes::eventFilter(QObject*, QEvent* event) {
    if (event->type() == QEvent::Show) {
        again_.start();
        read();
    } else if (event->type() == QEvent::Hide) {
        again_.stop();
    }
    return false;
}

void TonightTimes::read() {
    if (reading_ || !core_.history.state().on)
        return;
    reading_ = true;
    const QDateTime now = core_.clock.now();
    const std::int64_t noon = lastNoonMs(now);
    if (std::exchange(noonMs_, noon) != noon)
        times_ = LevelTimes();
    pool_.start([this, noon, times = times_, until = now.toMSecsSinceEpoch()]() mutable {
        HistoryReader reader;
        reader.eachCycle(std::max(noon, times.lastMs() + 1), until,
                         [&times](const KeptCycle& cycle) {
                             times.add(cycle);
                             return true;
                         });
        QMetaObject::invokeMethod(this, [this, read = times] {
            reading_ = false;
            times_ = read;
            show_(times_);
        });
    });
}

} // namespace skyhold
