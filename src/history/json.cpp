// SPDX-License-Identifier: GPL-3.0-or-later
#include "history/json.h"

#include <QDateTime>
#include <QJsonArray>

namespace skyhold {

using namespace Qt::Literals::StringLiterals;

QString isoTime(std::int64_t utcMs) {
    return QDateTime::fromMSecsSinceEpoch(utcMs, Qt::UTC).toString(Qt::ISODate);
}

QString verdictName(Verdict verdict) {
    constexpr const char16_t* kNames[] = {u"none", u"safe", u"waiting", u"unsafe"};
    return QString::fromUtf16(kNames[static_cast<std::size_t>(verdict)]);
}

QJsonObject toJson(const HistoryPoint& point) {
    QJsonObject object{{u"time"_s, isoTime(point.atMs)},
                       {u"span_s"_s, static_cast<qint64>(point.spanMs / 1'000)},
                       {u"cycles"_s, point.cycles},
                       {u"unsafe_cycles"_s, point.unsafeCycles},
                       {u"verdict"_s, verdictName(point.verdict)},
                       {u"temperature_unit"_s, QString(QLatin1Char(point.units.temperature))},
                       {u"speed_unit"_s, QString(QLatin1Char(point.units.speed))}};
    for (std::size_t i = 0; i < kMeasuredCount; ++i) {
        const std::optional<Extent>& extent = point.values[i];
        const QString name = QLatin1String(measuredName(i));
        if (!extent)
            object[name] = QJsonValue::Null;
        else if (extent->low == extent->high)
            object[name] = extent->mean;
        else
            object[name] = QJsonArray{extent->low, extent->mean, extent->high};
    }
    return object;
}

QJsonObject toJson(const HistoryEvent& event) {
    return {{u"time"_s, isoTime(event.atMs)}, {u"kind"_s, event.kind}, {u"name"_s, event.name},
            {u"state"_s, event.state},        {u"text"_s, event.text}, {u"detail"_s, event.detail}};
}

QJsonObject toJson(const VerdictPeriod& period) {
    QJsonArray changes;
    for (const HistoryEvent& change : period.changes)
        changes.append(QJsonObject{{u"time"_s, isoTime(change.atMs)},
                                   {u"causes"_s, change.detail[u"causes"_s]}});
    return {{u"from"_s, isoTime(period.fromMs)},
            {u"to"_s, isoTime(period.toMs)},
            {u"lasts"_s, period.lasts},
            {u"verdict"_s, period.verdict},
            {u"changes"_s, changes}};
}

} // namespace skyhold
