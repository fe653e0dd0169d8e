// SPDX-License-Identifier: GPL-3.0-or-later
// One quantity: its header, value, unit and condition on a card, and how it went over the last
// hour.
#pragma once

#include "records/controls.h"
#include "ui/widgets/readout.h"
#include "ui/widgets/trend_line.h"
#include "ui/window/panel_facts.h"
#include "ui/window/panel_parts.h"

namespace skyhold {

class ReadingTile : public Card {
    Q_OBJECT

  public:
    // The labels keep their control names as object names.
    ReadingTile(Label& header, const QString& headerName, Label& value, const QString& valueName,
                QWidget* parent);

    void showCondition(Label& condition, const QString& name);
    // The unit shows while there is a value.
    void showUnit(const QString& unit);
    void showUnit(Label& unit);
    // Drawn below the condition; nothing as long as there are no points.
    void showTrend(Trend trend, const TrendScale& scale);
    // A gauge takes the place of the trend, a culprit's foot that of both.
    void showFacts(const TileFacts& facts);
    // The source gives no data: no value, and the last one small and grey with its time.
    void setLost(bool lost, const QString& at);
    // A reading of the past is grey on a hollow card, and has the time `at` in the trend's place.
    void setOld(bool old, const QString& at);
    // Instead of all that: where the wind comes from, in degrees, and the name of that point.
    void showDirection(std::optional<double> degrees, const QString& point);
    // A compact tile has neither gauge nor times.
    void grow(const PanelSize& size);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void place();
    void showGround();
    QRect strip() const;
    void showLast();
    void placeFull();
    void placeCompact();
    void placeSpread(const QRect& line, bool narrow);
    void drawCard(QPaintEvent* event);
    void drawBelow(QPainter& painter, const QPaintEvent& event) const;
    void drawCulprit(QPainter& painter) const;
    void drawFoot(QPainter& painter) const;
    void drawLimitNumbers(QPainter& painter, const Gauge& gauge, const QRectF& bar) const;
    void drawLost(QPainter& painter) const;

    Readout* header_;
    Readout* value_;
    Readout* unit_;
    Readout* condition_;
    Readout* at_;
    Readout* spread_;
    Trend trend_;
    TrendScale scale_;
    TileFacts facts_;
    bool lost_ = false;
    bool old_ = false;
    PanelSize size_;
    std::optional<double> direction_;
    QString last_;   // value that was known
    QString lostAt_; // when it was read
};

} // namespace skyhold
