// What stands for a level in a table: its name with its colour, and the box that makes it unsafe.
#pragma once

#include "records/controls.h"
#include "ui/widgets/readout.h"

class QCheckBox;

namespace skyhold {

// A small field of the level's colour, and its name in the ink of texts.
class LevelName : public Swatch {
    Q_OBJECT

  public:
    // Without a colour the name stands where it would stand with one.
    LevelName(bool coloured, QWidget* parent);

  protected:
    void paintEvent(QPaintEvent* event) override;
    QColor shownInk() const override;

  private:
    bool coloured_;
};

// A box without a text; what it is for is its accessible name. `quantity` in words.
QCheckBox* makeUnsafeBox(CheckBox& record, const QString& name, const QString& quantity,
                         QWidget* parent);

} // namespace skyhold
