// SPDX-License-Identifier: GPL-3.0-or-later
// A step of the first start: which sensor there is. Its answer becomes the settings of
// skyhold-sensor, the sensor program for real devices, which writes them itself.
#pragma once

#include <QString>

class QButtonGroup;
class QLabel;
class QLineEdit;
class QVBoxLayout;

namespace skyhold {

class SensorStep {
  public:
    // Adds its rows to the step's column.
    explicit SensorStep(QVBoxLayout* step);

    // Where that program's settings lie, and whether they are there already: then they stay.
    static QString settingsPath();
    static bool isSetUp();

    // Has the settings written, unless the sensor has a program of its own. Empty, or what went
    // wrong. Serves events meanwhile; an INDI server is asked for its devices, which takes seconds.
    QString save();

  private:
    void choose(int kind);

    QButtonGroup* kinds_;
    QLabel* whereCaption_;
    QLineEdit* where_;
    QLabel* deviceCaption_;
    QLineEdit* device_;
};

} // namespace skyhold
