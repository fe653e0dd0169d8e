// SPDX-License-Identifier: GPL-3.0-or-later
// A small button with a frame. One that is checked is filled, in bold and with a thick frame: it
// stands out in every look, by its shape alone too.
#pragma once

#include <QPushButton>

namespace skyhold {

class FramedButton : public QPushButton {
    Q_OBJECT

  public:
    using QPushButton::QPushButton;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QFont boldFont() const;
};

} // namespace skyhold
