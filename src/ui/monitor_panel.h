// What is always in view: the verdict with its cause, delay and alarm messages, Stop Alarm while a
// sound is started, the roof switch, Start and Stop, a tile for every quantity, and the state of
// both sources and of the clients.
#pragma once

#include "core/monitoring_core.h"

#include "ui/trend_line.h"

#include <QWidget>

#include <utility>
#include <vector>

class QPushButton;

namespace skyhold {

class Card;
class ReadingTile;

class MonitorPanel : public QWidget {
    Q_OBJECT

  public:
    MonitorPanel(MonitoringCore& core, QWidget* parent);

  private:
    QWidget* makeVerdict(ConditionControls& conditions, SessionControls& session);
    QWidget* makeMessages(MonitoringCore& core);
    QPushButton* makeStopAlarm(MonitoringCore& core, QWidget* card);
    QWidget* makeSwitchAndSession(MonitoringCore& core);
    QWidget* makeTiles(Records& records);
    QWidget* makeSources(MonitoringCore& core);
    void showTrends(const Records& records, const QDateTime& now);

    struct TileTrend {
        ReadingTile* tile;
        double (*value)(const GraphPoint&);
        TrendScale scale;
    };
    std::vector<TileTrend> trends_;
    std::pair<std::int32_t, std::int32_t> shownPoints_{0, 0}; // how many, and the newest
};

// The two status lines on their light strip. A right click on the codes opens their legend.
class StatusStrip : public QWidget {
    Q_OBJECT

  public:
    StatusStrip(SessionControls& session, QWidget* parent);

  protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace skyhold
