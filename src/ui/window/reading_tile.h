// One quantity: its header, value, unit and condition on a card, and how it went over the last
// hour.
#pragma once

#include "records/controls.h"
#include "ui/widgets/readout.h"
#include "ui/widgets/trend_line.h"

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
    // A reading of the past is grey on a hollow card, and has the time `at` in the trend's place.
    void setOld(bool old, const QString& at);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void place();
    QRect strip() const;

    Readout* header_;
    Readout* value_;
    Readout* unit_;
    Readout* condition_;
    Readout* at_;
    Trend trend_;
    TrendScale scale_;
};

} // namespace skyhold
