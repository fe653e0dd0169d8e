// SPDX-License-Identifier: GPL-3.0-or-later
// One table of all quantities: each with its value now and, for each of its levels, the name and
// colour, the upper limit, what it counts for, and how long it lasted tonight.
#pragma once

#include "core/monitoring_core.h"
#include "ui/widgets/readout.h"

class QGridLayout;

namespace skyhold {

class LevelTimes;

class LimitsTable : public Card {
  public:
    // `core` outlives the table.
    LimitsTable(MonitoringCore& core, QWidget* parent);

    // The level in which the quantity is now, 1..3; 0 when none is marked.
    int markedLevel(Quantity quantity) const { return marked_[quantity]; }
    void showTimes(const LevelTimes& times);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    // Of one quantity.
    struct Now {
        Readout* value = nullptr;
        Readout* unit = nullptr;
        Readout* left = nullptr;
        std::array<Readout*, kLevelCount> tonight{};
    };

    void addHeader();
    void addQuantity(const QuantityRow& shown);
    void addNow(const QuantityRow& shown);
    void addLevel(const QuantityRow& shown, std::size_t i);
    void addName(const QuantityRow& shown, std::size_t i);
    void addLimit(const QuantityRow& shown, std::size_t i);
    void addSector(const QuantityRow& shown, std::size_t i);
    void showNow();
    void showQuantity(const QuantityRow& shown);
    int rowOfLevel(Quantity quantity, std::size_t i) const;

    MonitoringCore& core_;
    QGridLayout* grid_;
    PerQuantity<Now> now_;
    PerQuantity<int> marked_;
};

} // namespace skyhold
