// SPDX-License-Identifier: GPL-3.0-or-later
// The panel alone, for a screen that is read from across the room: verdict, why, tiles, health and
// the band of the night, in letters that grow with the screen.
#pragma once

#include "core/monitoring_core.h"
#include "ui/window/night_reader.h"
#include "ui/window/wall_parts.h"

#include <QTimer>
#include <QWidget>

namespace skyhold {

struct WallTile {
    std::optional<Quantity> quantity; // none: the wind's direction
    bool ofSensor;
};

class WallPanel : public QWidget {
    Q_OBJECT

  public:
    // Painted from the records of `core`, which outlives it: after each cycle and, while it is
    // visible, each second.
    WallPanel(MonitoringCore& core, QWidget* parent);

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
    QString unitOf(const WallTile& tile) const;
    wall::Tile tileOf(const WallTile& shown) const;
    void drawTiles(QPainter& painter, const QRectF& area) const;
    void drawHealth(QPainter& painter, const QRectF& area) const;
    void drawBand(QPainter& painter, const QRectF& area) const;

    MonitoringCore& core_;
    QTimer second_;
    std::int64_t startedMs_ = 0; // when the session began to start
    NightReader night_;
};

} // namespace skyhold
