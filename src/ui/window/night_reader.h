// SPDX-License-Identifier: GPL-3.0-or-later
// Reads what the history has of the night, on a thread of its own: at once, after each change of
// the verdict, and from time to time.
#pragma once

#include "core/monitoring_core.h"
#include "ui/widgets/timeline_paint.h"
#include "ui/window/panel_facts.h"

#include <QObject>
#include <QThreadPool>
#include <QTimer>

#include <memory>

namespace skyhold {

class NightReader : public QObject {
    Q_OBJECT

  public:
    // `core` outlives it.
    NightReader(MonitoringCore& core, int everyMs, QObject* parent);
    ~NightReader() override;

    // Reads only while somebody sees it.
    void setWanted(bool wanted);
    // The night as it was read last, without its curves; nothing before.
    const Night* night() const { return night_.get(); }

  Q_SIGNALS:
    void changed();

  private:
    void read();

    MonitoringCore& core_;
    std::shared_ptr<const Night> night_;
    QTimer due_; // while it is wanted
    bool wanted_ = false;
    bool reading_ = false;
    QThreadPool pool_;
};

// Of a quantity that the sensor program judges by limits of its own: what its values of the night
// have shown of them. Nothing while none of them is known.
std::optional<Gauge> observedGauge(const Night* night, Quantity quantity, double value);

} // namespace skyhold
