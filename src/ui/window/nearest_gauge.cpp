// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window/nearest_gauge.h"

#include "ui/widgets/bind.h"
#include "ui/window/panel_shapes.h"

#include <QPainter>

namespace skyhold {

NearestGauge::NearestGauge(MonitoringCore& core, QWidget* parent)
    : QWidget(parent)
    , core_(core) {
    setObjectName(QStringLiteral("NearestGauge"));
    SessionControls& session = core.records.session;
    follow(this, session.CyclesDone, [this](std::int64_t) { showNow(); });
    follow(this, session.verdict, [this](Verdict) { showNow(); });
    follow(this, session.State, [this](SessionState) { showNow(); });
}

void NearestGauge::grow(const PanelSize& size) {
    size_ = size;
    setFixedSize(size.length(330), size.length(24));
    showNow();
}

void NearestGauge::showNow() {
    const SessionControls& session = core_.records.session;
    std::optional<Gauge> now;
    for (const QuantityRow& row : quantityTable()) {
        if (session.State == SessionState::Idle || session.verdict != Verdict::Safe)
            break;
        const TileFacts facts = tileFacts(row.quantity, core_.result, session.verdict, core_.forms);
        if (facts.nearest)
            now = facts.gauge;
    }
    setHidden(!now || size_.compact);
    if (now == gauge_)
        return;
    gauge_ = now;
    update();
}

void NearestGauge::paintEvent(QPaintEvent*) {
    if (!gauge_)
        return;
    QPainter painter(this);
    const qreal unit = size_.unit;
    drawGauge(painter, *gauge_, {0, 11 * unit, width() - 5 * unit, 8 * unit});
}

} // namespace skyhold
