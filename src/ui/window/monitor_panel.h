// SPDX-License-Identifier: GPL-3.0-or-later
// What is always in view: the verdict with its cause, delay and alarm messages, Stop Alarm while a
// sound is started, the roof switch, Start and Stop, whether everything works, and a tile for every
// quantity.
#pragma once

#include "core/monitoring_core.h"
#include "ui/window/panel_parts.h"

#include <QTimer>
#include <QWidget>

#include <vector>

namespace skyhold {

class HealthRow;
class TileRow;

class MonitorPanel : public QWidget {
    Q_OBJECT

  public:
    MonitorPanel(MonitoringCore& core, QWidget* parent);

    // Lower, so that a page of settings has the room.
    void setCompact(bool compact);

  Q_SIGNALS:
    void counted(); // a second has gone, or a cycle

  protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void setSize(const PanelSize& size);
    void grow();
    void count();
    void showLive(bool live);

    HealthRow* health_;
    TileRow* tiles_;
    std::vector<Readout*> readouts_; // in colours of the session
    std::function<void()> countVerdict_;
    std::vector<std::function<void(const PanelSize&)>> grow_;
    PanelSize size_;
    QTimer second_; // runs while the panel is visible
};

} // namespace skyhold
