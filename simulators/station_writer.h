// SPDX-License-Identifier: GPL-3.0-or-later
// Puts the station file on disk, properly or with a fault.
#pragma once

#include "simulators/faults.h"

#include <QByteArray>
#include <QString>
#include <QTimer>

namespace skyhold {

class StationWriter {
  public:
    explicit StationWriter(const QString& path);

    static QStringList faultNames();

    // Writes the text beside the file and renames it over, unless a fault wants otherwise. A write
    // that fails is reported on standard error.
    void write(const QByteArray& text, const Faults& faults);

  private:
    void replace(const QByteArray& bytes);
    void replaceByHuge();
    void writeInHalves(const QByteArray& text, int pauseMs);
    void writeSecondHalf();

    QString path_;
    QTimer pause_; // runs between the two halves
    QByteArray secondHalf_;
};

} // namespace skyhold
