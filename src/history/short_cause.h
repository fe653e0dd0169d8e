// SPDX-License-Identifier: GPL-3.0-or-later
// A cause on a few columns: "gust 34.2 > 20 km/h", "rain Wet", "station data", "waiting".
#pragma once

#include <QJsonObject>
#include <QString>

#include <optional>

namespace skyhold {

struct ShortCause {
    QString name;
    QString label; // of what has no limits
    std::optional<double> value;
    bool above = true; // the limit
    std::optional<double> limit;
    QString unit;
};

QString shortCause(const ShortCause& cause);

// Of a cause of the state document.
QString shortCause(const QJsonObject& cause);

} // namespace skyhold
