// SPDX-License-Identifier: GPL-3.0-or-later
// The row of small fields that shows whether everything works, with the lamps, dates and counters
// that belong to them, and who is attached.
#pragma once

#include "ui/widgets/readout.h"
#include "ui/window/health_facts.h"
#include "ui/window/panel_parts.h"

namespace skyhold {

// One fact: its shape, name and word, and a line below. A frame marks what has failed or sounds.
class HealthFieldView : public QWidget {
    Q_OBJECT

  public:
    HealthFieldView(const QString& name, QWidget* parent);

    // Repaints only what differs.
    void show(const HealthFact& fact);
    void grow(const PanelSize& size);
    // Where the line below the words stands.
    QRect lineRect() const;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    void drawFrame(QPainter& painter) const;
    void drawWords(QPainter& painter) const;
    void drawLine(QPainter& painter) const;
    QRect wordsRect() const;
    QColor ground() const;

    HealthFact fact_;
    PanelSize size_;
};

class HealthRow : public Card {
    Q_OBJECT

  public:
    // `core` outlives it.
    HealthRow(MonitoringCore& core, QWidget* parent);

    // What counts between cycles.
    void count();
    void grow(const PanelSize& size);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    Readout* makeDate(HealthField field, const QString& name, Label& record);
    void makeReadLamps(LampPair& record);
    void makeUsers(SessionControls& session);
    HealthFieldView* field(HealthField which) const {
        return fields_[static_cast<std::size_t>(which)];
    }
    void place();

    MonitoringCore& core_;
    std::array<HealthFieldView*, kHealthFields> fields_{};
    Readout* sensorDate_;
    Readout* stationDate_;
    std::array<LampWidget*, 2> readLamps_{};
    QWidget* users_ = nullptr;
    std::vector<Readout*> userTexts_;
    std::vector<LampWidget*> userLamps_;
    PanelSize size_;
};

} // namespace skyhold
