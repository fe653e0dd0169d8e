// Puts the station file on disk, properly or with a fault.
#pragma once

#include "simulators/faults.h"

#include <QByteArray>
#include <QObject>
#include <QString>

namespace skyhold {

class StationWriter : public QObject {
  public:
    explicit StationWriter(const QString& path)
        : path_(path) {}

    static QStringList faultNames();

    // Writes the text beside the file and renames it over, unless a fault wants otherwise. A write
    // that fails is reported on standard error.
    void write(const QByteArray& text, const Faults& faults);

  private:
    void replace(const QByteArray& bytes);
    void replaceByHuge();
    void writeInHalves(const QByteArray& text, int pauseMs);

    QString path_;
    bool halfWritten_ = false;
};

} // namespace skyhold
