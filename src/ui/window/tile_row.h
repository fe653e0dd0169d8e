// SPDX-License-Identifier: GPL-3.0-or-later
// A tile for each quantity and one for the wind's direction.
#pragma once

#include "core/monitoring_core.h"
#include "ui/widgets/trend_line.h"
#include "ui/window/night_reader.h"
#include "ui/window/panel_parts.h"

#include <utility>
#include <vector>

namespace skyhold {

class ReadingTile;

class TileRow : public QWidget {
    Q_OBJECT

  public:
    // `core` outlives it.
    TileRow(MonitoringCore& core, QWidget* parent);

    void grow(const PanelSize& size);
    // Without a session nothing has a colour of its own, and the last readings have their times.
    void showLive(bool live);
    void showFacts();
    void showTrends();

  protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

  private:
    ReadingTile* addTile(Label& header, int number, Label& value, const QString& valueName,
                         bool ofSensor, std::optional<Quantity> quantity);
    void addQuantity(Quantity quantity, int header);
    void addDirection();
    void showDirection();

    void readNight();

    struct ShownTile {
        ReadingTile* tile;
        bool ofSensor; // the sensor program reads it
        std::optional<Quantity> quantity;
    };
    TileFacts factsOf(const ShownTile& shown) const;
    struct TileTrend {
        ReadingTile* tile;
        double (*value)(const GraphPoint&);
        TrendScale scale;
    };

    MonitoringCore& core_;
    NightReader night_;
    std::vector<ShownTile> tiles_;
    ReadingTile* direction_ = nullptr;
    std::vector<TileTrend> trends_;
    std::pair<std::int32_t, std::int32_t> shownPoints_{0, 0}; // how many, and the newest
};

} // namespace skyhold
