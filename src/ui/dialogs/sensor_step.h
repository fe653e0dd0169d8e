// SPDX-License-Identifier: GPL-3.0-or-later
// A step of the first start: which sensor there is. Its answer becomes the settings of
// skyhold-sensor, the sensor program for real devices, which writes them itself.
#pragma once

#include <QString>
#include <QTemporaryDir>

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

    // Path of that program.
    static QString program();

    // Has the settings written into a folder of its own, unless the sensor has another program.
    // Empty, or what went wrong. Serves events meanwhile; an INDI server is asked for its devices,
    // which takes seconds.
    QString prepare();
    // The settings that were prepared; empty when there are none.
    const QString& prepared() const { return prepared_; }
    // Puts them where that program looks for them. Empty, or what went wrong.
    QString save();

  private:
    void choose(int kind);
    QString writeSettings(const QStringList& answers);

    QButtonGroup* kinds_;
    QLabel* whereCaption_;
    QLineEdit* where_;
    QLabel* deviceCaption_;
    QLineEdit* device_;
    QTemporaryDir folder_;
    QStringList answers_; // of which `prepared_` is
    QString prepared_;
};

} // namespace skyhold
