// SPDX-License-Identifier: GPL-3.0-or-later
// The state document in words: the verdict, why, and every reading.
#pragma once

#include <QJsonObject>
#include <QString>

namespace skyhold {

QString statusText(const QJsonObject& document);
// The same on one line, without the sources.
QString statusLine(const QJsonObject& document);

} // namespace skyhold
