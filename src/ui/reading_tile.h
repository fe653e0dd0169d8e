// One quantity: its header, value, unit and condition on a card.
#pragma once

#include "records/controls.h"
#include "ui/readout.h"

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

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    void place();

    Readout* header_;
    Readout* value_;
    Readout* unit_;
    Readout* condition_;
};

} // namespace skyhold
