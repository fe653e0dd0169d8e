// SPDX-License-Identifier: GPL-3.0-or-later
// What came of a check of the station's file: a lamp and what the monitor would say, below it what
// was read; every entry in a window of its own.
#pragma once

#include "datafiles/station_check.h"

#include <QWidget>

class QLabel;
class QPushButton;

namespace skyhold {

class LampWidget;

class StationCheckView : public QWidget {
    Q_OBJECT

  public:
    explicit StationCheckView(QWidget* parent);

    void showCheck(const StationCheck& check);
    // Nothing was checked: why.
    void showNone(const QString& why);

  private:
    void showEntries();

    LampWidget* lamp_;
    QLabel* outcome_;
    QLabel* brief_;
    QPushButton* entries_;
    QStringList lines_;
};

} // namespace skyhold
