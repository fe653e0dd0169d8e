// SPDX-License-Identifier: GPL-3.0-or-later
// The editor of the compass labels that the station's file uses for wind directions.
#pragma once

#include <QDialog>

#include <array>

class QLineEdit;

namespace skyhold {

class KivCardinalPoints : public QDialog {
    Q_OBJECT

  public:
    // Label k stands for k * 22.5 degrees. OK writes all of them, Cancel none.
    KivCardinalPoints(std::array<QString, 16>& labels, QWidget* parent);

    void accept() override;

  private:
    std::array<QString, 16>& labels_;
    std::array<QLineEdit*, 16> boxes_{};
};

} // namespace skyhold
