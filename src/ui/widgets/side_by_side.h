// SPDX-License-Identifier: GPL-3.0-or-later
// A wide part with cards beside it; where the window is too narrow for that, below it.
#pragma once

#include <QWidget>

class QBoxLayout;

namespace skyhold {

// Stands in a scroll area, by whose width it goes.
class SideBySide : public QWidget {
  public:
    // Becomes the parent of all of them, and is made below its scroll area. The cards have the
    // width `beside` when they stand beside.
    SideBySide(QWidget* wide, const QList<QWidget*>& cards, int beside, QWidget* parent);

    bool eventFilter(QObject* watched, QEvent* event) override;

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void arrange(QSize room);

    QWidget* room_ = nullptr; // in which it stands
    QWidget* wide_;
    QWidget* side_;
    int highest_; // the wide part
    int beside_;
    QBoxLayout* both_;
    QBoxLayout* cards_;
};

} // namespace skyhold
