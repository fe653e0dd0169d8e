// SPDX-License-Identifier: GPL-3.0-or-later
// Why the verdict is what it is, or was at a moment of the past, in several lines.
#pragma once

#include <QJsonObject>
#include <QString>

namespace skyhold {

// A state document in words: the verdict, its causes, sources that are not well, all readings with
// their limits.
QString whyText(const QJsonObject& document);

} // namespace skyhold
