// SPDX-License-Identifier: GPL-3.0-or-later
// The gauge of what is nearest to its limit, while all is safe.
#pragma once

#include "core/monitoring_core.h"
#include "ui/window/panel_facts.h"
#include "ui/window/panel_parts.h"

namespace skyhold {

class NearestGauge : public QWidget {
    Q_OBJECT

  public:
    // `core` outlives it.
    NearestGauge(MonitoringCore& core, QWidget* parent);

    // A compact panel has none.
    void grow(const PanelSize& size);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    void showNow();

    MonitoringCore& core_;
    std::optional<Gauge> gauge_;
    PanelSize size_;
};

} // namespace skyhold
