// SPDX-License-Identifier: GPL-3.0-or-later
// The panel alone, for a screen that is read from across the room: verdict, why, tiles, health and
// the band of the night, in letters that grow with the screen.
#pragma once

#include "core/monitoring_core.h"
#include "ui/widgets/timeline_data.h"

#include <QThreadPool>
#include <QTimer>
#include <QWidget>

namespace skyhold {

class WallPanel : public QWidget {
    Q_OBJECT

  public:
    // Painted from the records of `core`, which outlives it: after each cycle and, while it is
    // visible, each second.
    WallPanel(MonitoringCore& core, QWidget* parent);
    ~WallPanel() override;

  Q_SIGNALS:
    void left(); // Esc, or a double click

  protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

  private:
    void drawVerdict(QPainter& painter, const QRectF& area) const;
    void drawWhy(QPainter& painter, const QRectF& area) const;
    void drawTiles(QPainter& painter, const QRectF& area) const;
    void drawHealth(QPainter& painter, const QRectF& area) const;
    void drawBand(QPainter& painter, const QRectF& area) const;
    void readBand();

    MonitoringCore& core_;
    QTimer second_;
    std::int64_t startedMs_ = 0; // when the session began to start
    std::vector<BandSegment> band_;
    TimeRange night_;
    QTimer bandDue_; // while it is visible
    bool reading_ = false;
    QThreadPool pool_; // reads the history
};

} // namespace skyhold
