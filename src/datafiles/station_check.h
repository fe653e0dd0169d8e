// SPDX-License-Identifier: GPL-3.0-or-later
// What the monitor's reader sees in a station's file.
#pragma once

#include "platform/text_forms.h"
#include "records/unit_controls.h"

#include <QDateTime>
#include <QStringList>

namespace skyhold {

struct StationCheck {
    QStringList lines; // of each entry what it came to, for a terminal
    QStringList brief; // the same in a few lines
    QString outcome;   // "All of it can be judged."
    // 0: fresh, and every value that is judged is there; 1: the monitor would say unsafe; 2: it
    // cannot be read.
    int status = 2;
};

// Reads the file as the first and second cycle of a session would. Texts of the file stand in the
// lines as they are.
StationCheck checkStationFile(const QString& path, const UnitControls& units, double timeoutMinutes,
                              const NumberForms& forms, const QDateTime& now);

} // namespace skyhold
