// SPDX-License-Identifier: GPL-3.0-or-later
// What is always in view: the verdict with its cause, delay and alarm messages, Stop Alarm while a
// sound is started, the roof switch, Start and Stop, a tile for every quantity, and the state of
// both sources and of the clients.
#pragma once

#include "core/monitoring_core.h"

#include "ui/widgets/trend_line.h"

#include <QTimer>
#include <QWidget>

#include <utility>
#include <vector>

namespace skyhold {

class HealthMarks;
class ReadingTile;
class Readout;

class MonitorPanel : public QWidget {
    Q_OBJECT

  public:
    MonitorPanel(MonitoringCore& core, QWidget* parent);

  protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    QWidget* makeSwitchAndSession(MonitoringCore& core);
    QWidget* makeTiles(Records& records);
    QWidget* makeSources(MonitoringCore& core);
    void growWithWindow();
    void growRow(QWidget* row, HealthMarks* marks);
    void showTrends(const Records& records, const QDateTime& now);
    void showLive(const Records& records, bool live);
    void showFacts(const MonitoringCore& core);

    struct TileTrend {
        ReadingTile* tile;
        double (*value)(const GraphPoint&);
        TrendScale scale;
    };
    std::vector<TileTrend> trends_;
    struct ShownTile {
        ReadingTile* tile;
        bool ofSensor; // the sensor program reads it
        std::optional<Quantity> quantity;
    };
    std::vector<ShownTile> tiles_;
    std::vector<Readout*> readouts_; // in colours of the session
    std::function<void()> countVerdict_, countAges_;
    std::vector<std::function<void(qreal)>> grow_; // what gets larger with the window
    qreal unit_ = 1;
    QTimer second_;                                           // runs while the panel is visible
    std::pair<std::int32_t, std::int32_t> shownPoints_{0, 0}; // how many, and the newest
};

} // namespace skyhold
