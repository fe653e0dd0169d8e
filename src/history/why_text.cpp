// SPDX-License-Identifier: GPL-3.0-or-later
#include "history/why_text.h"

#include "model/quantity.h"
#include "platform/plain_line.h"
#include "platform/text_forms.h"

#include <QJsonArray>

#include <algorithm>
#include <cmath>
#include <vector>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

QDateTime localTime(const QJsonValue& value) {
    return QDateTime::fromString(value.toString(), Qt::ISODate).toLocalTime();
}

QString verdictLine(const QJsonObject& document) {
    const QString verdict = document[u"verdict"_s].toString();
    QString line = verdict == u"none" || verdict.isEmpty() ? u"NO VERDICT"_s : verdict.toUpper();
    if (const QDateTime since = localTime(document[u"since"_s]); since.isValid())
        line += u" since "_s + since.toString(u"yyyy-MM-dd HH:mm:ss"_s);
    if (verdict == u"safe" && !document[u"safe"_s].toBool())
        line += u", but not to be trusted"_s;
    return line;
}

QString valueText(const QJsonObject& reading) {
    const QJsonValue value = reading[u"value"_s];
    if (!value.isDouble())
        return u"-"_s;
    const QString unit = reading[u"unit"_s].toString();
    const QString number = numberText(std::round(value.toDouble() * 10) / 10, {});
    return unit.isEmpty() ? number : number + u' ' + unit;
}

// "limits 10, 20, 99" with those that make it unsafe in words.
QString limitsText(const QJsonObject& reading) {
    QStringList limits;
    for (const QJsonValue limit : reading[u"limits"_s].toArray())
        limits += numberText(limit.toDouble(), {});
    QStringList armed;
    for (const QJsonValue level : reading[u"armed"_s].toArray())
        armed += QString::number(level.toInt());
    QString text = limits.isEmpty() ? QString() : u"limits "_s + limits.join(u", "_s);
    if (!armed.isEmpty())
        text +=
            (text.isEmpty() ? QString() : u"; "_s) + u"unsafe at level "_s + armed.join(u", "_s);
    return text;
}

QString readingLines(const QJsonObject& readings) {
    struct Line {
        QString name, value, label, limits;
    };
    std::vector<Line> lines;
    for (const QuantityRow& row : quantityTable()) {
        const QString key = QLatin1String(row.key);
        const QJsonObject reading = readings[key].toObject();
        if (reading.isEmpty())
            continue;
        const int level = reading[u"level"_s].toInt();
        QString label = reading[u"label"_s].toString();
        if (level > 0)
            label += u" (%1)"_s.arg(level);
        lines.push_back(
            {QString::fromUtf16(row.title), valueText(reading), label, limitsText(reading)});
    }
    qsizetype names = 0, values = 0, labels = 0;
    for (const Line& line : lines) {
        names = std::max(names, line.name.size());
        values = std::max(values, line.value.size());
        labels = std::max(labels, line.label.size());
    }
    QString text;
    for (const Line& line : lines)
        text += (line.name.leftJustified(names) + u"  "_s + line.value.rightJustified(values) +
                 u"  "_s + line.label.leftJustified(labels) + u"  "_s + line.limits)
                    .trimmed() +
                u'\n';
    return text;
}

} // namespace

QString whyText(const QJsonObject& document) {
    QString text = verdictLine(document) + u'\n';
    for (const QJsonValue cause : document[u"causes"_s].toArray())
        text += u"  "_s + plainLine(cause[u"text"_s].toString()) + u'\n';
    const QJsonObject sources = document[u"sources"_s].toObject();
    for (const auto& [name, title] : {std::pair{u"station"_s, u"Weather station"_s},
                                      std::pair{u"sensor"_s, u"Sensor program"_s}}) {
        const QJsonObject source = sources[name].toObject();
        if (source.isEmpty() || source[u"state"_s] == u"ok"_s)
            continue;
        const QString detail = plainLine(source[u"detail"_s].toString());
        text += title + u": "_s + source[u"state"_s].toString() +
                (detail.isEmpty() ? QString() : u", "_s + detail) + u'\n';
    }
    const QString readings = readingLines(document[u"readings"_s].toObject());
    if (!readings.isEmpty())
        text += u'\n' + readings;
    if (const QDateTime time = localTime(document[u"time"_s]); time.isValid())
        text += u"As of "_s + time.toString(u"yyyy-MM-dd HH:mm:ss"_s) + u'\n';
    return text;
}

} // namespace skyhold
