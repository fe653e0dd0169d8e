// SPDX-License-Identifier: GPL-3.0-or-later
#include "ctl/status.h"

#include "ctl/values.h"
#include "ctl/verdict.h"
#include "model/quantity.h"

#include <QDateTime>

#include <algorithm>
#include <vector>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

struct Reading {
    QString name;
    QString value; // with its unit; empty when it is not known
    QString label; // of its level
    bool unsafe = false;
};

QString valueOf(const QJsonObject& reading) {
    const QJsonValue value = reading[u"value"_s];
    const QString unit = plainLine(reading[u"unit"_s].toString());
    if (!value.isDouble())
        return u"–"_s;
    // A plain count has neither unit nor decimals.
    return unit.isEmpty() ? QString::number(value.toDouble(), 'f', 0)
                          : QString::number(value.toDouble(), 'f', 1) + u' ' + unit;
}

// None without a session: what was read before it ended is not how it is.
std::vector<Reading> readingsOf(const QJsonObject& document) {
    std::vector<Reading> all;
    if (document[u"session"_s] != u"running"_s)
        return all;
    const QJsonObject readings = document[u"readings"_s].toObject();
    for (const QuantityRow& row : quantityTable()) {
        const QJsonObject reading = readings[QLatin1String(row.key)].toObject();
        if (!reading.isEmpty())
            all.push_back({QString::fromUtf16(row.title), valueOf(reading),
                           plainLine(reading[u"label"_s].toString()).trimmed(),
                           reading[u"unsafe"_s] == true});
    }
    return all;
}

QString verdictWord(StatusVerdict verdict) {
    switch (verdict) {
    case StatusVerdict::Safe:
        return u"SAFE"_s;
    case StatusVerdict::Unsafe:
        return u"UNSAFE"_s;
    case StatusVerdict::Unknown:
        break;
    }
    return u"UNKNOWN"_s;
}

// What is nearest to its limit, while it is safe.
QStringList reasons(const QJsonObject& document) {
    QStringList words = causesOf(document);
    if (document[u"session"_s] == u"idle"_s && document.contains(u"time"_s))
        words.last() += u"; start it with: skyholdctl start"_s;
    if (words.isEmpty())
        words += plainLine(document[u"nearest"_s][u"text"_s].toString());
    words.removeAll(QString());
    return words;
}

QString sourceText(const QString& name, const QJsonObject& source) {
    QString text = name + u' ' + plainLine(source[u"state"_s].toString());
    if (source[u"age_s"_s].isDouble())
        text += u", %1 s old"_s.arg(source[u"age_s"_s].toInteger());
    const QString detail = plainLine(source[u"detail"_s].toString()).trimmed();
    return detail.isEmpty() ? text : text + u" ("_s + detail + u')';
}

} // namespace

QString statusText(const QJsonObject& document) {
    const QString verdict = verdictWord(verdictOf(document));
    const QString indent = u'\n' + QString(verdict.size() + 2, u' ');
    QStringList first{verdict};
    if (const QStringList why = reasons(document); !why.isEmpty())
        first += why.join(indent);
    QString text = first.join(u"  "_s) + u'\n';

    const std::vector<Reading> readings = readingsOf(document);
    if (readings.empty())
        return text;
    qsizetype nameWidth = 0;
    qsizetype valueWidth = 0;
    for (const Reading& reading : readings) {
        nameWidth = std::max(nameWidth, reading.name.size());
        valueWidth = std::max(valueWidth, reading.value.size());
    }
    for (const Reading& reading : readings)
        text += reading.name.leftJustified(nameWidth) + u"  "_s +
                reading.value.rightJustified(valueWidth) + u"  "_s + reading.label +
                (reading.unsafe ? u" (unsafe)\n"_s : u"\n"_s);
    const QJsonObject sources = document[u"sources"_s].toObject();
    return text + sourceText(u"Kiv_Nubilo"_s, sources[u"sensor"_s].toObject()) + u"; "_s +
           sourceText(u"station"_s, sources[u"station"_s].toObject()) + u'\n';
}

QString statusLine(const QJsonObject& document) {
    QStringList parts{verdictWord(verdictOf(document))};
    if (const QStringList why = reasons(document); !why.isEmpty())
        parts += why.join(u"; "_s);
    for (const Reading& reading : readingsOf(document))
        parts += reading.name + u' ' + reading.value + u' ' + reading.label;
    return parts.join(u" | "_s);
}

} // namespace skyhold
