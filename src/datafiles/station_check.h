// SPDX-License-Identifier: GPL-3.0-or-later
// What the monitor's reader sees in a station's file.
#pragma once

#include "platform/text_forms.h"
#include "records/unit_controls.h"

#include <QDateTime>
#include <QStringList>

#include <optional>
#include <vector>

namespace skyhold {

struct StationCheck {
    // Of a quantity that is judged; an empty text is one that cannot be.
    struct Value {
        QString name; // "Wind"
        QString text; // "12.2 km/hr"
        QString note; // why it is missing or stands for nothing
    };

    QStringList lines; // of each entry what it came to, for a terminal
    QStringList brief; // the same in a few lines
    std::vector<Value> values;
    QStringList remarks;                    // what is wrong with it; `brief` has them, too
    std::optional<std::int64_t> ageSeconds; // of the file
    QString outcome;                        // "All of it can be judged."
    // 0: fresh, and every value that is judged is there; 1: the monitor would say unsafe; 2: it
    // cannot be read.
    int status = 2;
};

// Reads the file as the first and second cycle of a session would. Texts of the file stand in the
// lines as they are.
StationCheck checkStationFile(const QString& path, const UnitControls& units, double timeoutMinutes,
                              const NumberForms& forms, const QDateTime& now);

} // namespace skyhold
