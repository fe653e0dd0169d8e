// SPDX-License-Identifier: GPL-3.0-or-later
// The monitor's state document, as it is on the bus.
#pragma once

#include <QJsonObject>
#include <QString>

namespace skyhold {

// Reads the document without attaching. Empty when there is no monitor or it does not answer in
// time; `fault` says why.
QJsonObject readStateDocument(QString& fault);

// The document for a monitor that cannot be asked: unsafe, and the reason as its cause.
QJsonObject unreachableDocument(const QString& reason);
} // namespace skyhold
