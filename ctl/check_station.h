// What the monitor's reader sees in a station's file.
#pragma once

#include "ctl/command_line.h"
#include "platform/text_forms.h"
#include "records/records.h"

#include <QDateTime>

namespace skyhold {

struct StationCheck {
    QStringList lines;
    // 0: fresh, and every value that is judged is there; 1: the monitor would say unsafe; 2: it
    // cannot be read.
    int status = 2;
};

// Reads the file as the first and second cycle of a session would, with these settings.
StationCheck checkStationFile(const QString& path, const Records& records, const NumberForms& forms,
                              const QDateTime& now);

// With the monitor's settings.
int runCheckStation(const Command& command);

} // namespace skyhold
