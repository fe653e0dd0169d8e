// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window/monitor_panel.h"

#include "ui/look/look.h"
#include "ui/look/window_unit.h"
#include "ui/widgets/bind.h"
#include "ui/window/health_row.h"
#include "ui/window/message_card.h"
#include "ui/window/session_card.h"
#include "ui/window/tile_row.h"
#include "ui/window/verdict_card.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace skyhold {

MonitorPanel::MonitorPanel(MonitoringCore& core, QWidget* parent)
    : QWidget(parent)
    , health_(new HealthRow(core, this))
    , tiles_(new TileRow(core, this)) {
    const VerdictView verdict = makeVerdictCard(core, this);
    countVerdict_ = verdict.tick;
    const PanelPart message = makeMessageCard(core, this, readouts_);
    const PanelPart sessionCard = makeSessionCard(core, this, readouts_);
    grow_ = {verdict.grow, message.grow, sessionCard.grow};
    auto* top = new QHBoxLayout;
    top->setSpacing(look::kGap);
    top->addWidget(verdict.card);
    top->addWidget(message.card, 1);
    top->addWidget(sessionCard.card);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(look::kMargin, look::kGap / 2, look::kMargin, look::kGap);
    layout->setSpacing(look::kGap);
    layout->addLayout(top);
    layout->addWidget(health_);
    layout->addWidget(tiles_);
    grow();

    SessionControls& session = core.records.session;
    follow(this, session.CyclesDone, [this, &session](std::int64_t) {
        tiles_->showTrends();
        showLive(session.begun());
        tiles_->showFacts();
        Q_EMIT counted();
    });
    follow(this, session.verdict, [this](Verdict) { tiles_->showFacts(); });
    // A session that starts has nothing to show before its first reading.
    follow(this, session.State, [this](SessionState state) {
        if (state != SessionState::Running)
            showLive(false);
        tiles_->showFacts();
    });
    // Without a session nothing counts; what is left to follow may be shown a little later.
    const double scale = std::max(core.clock.scale(), 1.0);
    const int secondMs = std::max(static_cast<int>(1000 / scale), 50);
    follow(this, session.State, [this, secondMs](SessionState state) {
        second_.setInterval(state == SessionState::Idle ? 5 * secondMs : secondMs);
    });
    connect(&second_, &QTimer::timeout, this, &MonitorPanel::count);
}

void MonitorPanel::count() {
    countVerdict_();
    health_->count();
    Q_EMIT counted();
}

void MonitorPanel::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    count();
    second_.start();
}

void MonitorPanel::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    second_.stop();
}

// After the layouts that are at work: they would not see a height that changes meanwhile.
void MonitorPanel::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    QMetaObject::invokeMethod(
        this,
        [this] {
            setSize({windowUnit(*this), size_.compact});
        },
        Qt::QueuedConnection);
}

void MonitorPanel::setCompact(bool compact) {
    setSize({size_.unit, compact});
}

void MonitorPanel::setSize(const PanelSize& size) {
    if (size == size_)
        return;
    size_ = size;
    grow();
}

void MonitorPanel::grow() {
    for (const auto& grow : grow_)
        grow(size_);
    health_->grow(size_);
    tiles_->grow(size_);
}

void MonitorPanel::showLive(bool live) {
    for (Readout* readout : readouts_)
        readout->setOld(!live);
    tiles_->showLive(live);
}

} // namespace skyhold
