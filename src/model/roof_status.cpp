// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/roof_status.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QStringList>

namespace skyhold {

using namespace Qt::Literals::StringLiterals;

QByteArray roofStatusJson(bool safe, const QJsonObject& document) {
    constexpr qsizetype kLongest = 1'000; // the proxy reads 8191 bytes at most
    QStringList reasons;
    for (const auto& cause : document[u"causes"_s].toArray())
        reasons += cause[u"text"_s].toString();
    if (safe)
        reasons = {u"All conditions safe"_s};
    const QJsonObject status{{u"open_ok"_s, safe ? 1 : 0},
                             {u"reasons"_s, reasons.join(u"; ").left(kLongest)}};
    return QJsonDocument(QJsonObject{{u"roof_status"_s, status}}).toJson(QJsonDocument::Compact);
}

} // namespace skyhold
