// SPDX-License-Identifier: GPL-3.0-or-later
#include "ctl/times.h"

#include <QRegularExpression>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

std::optional<std::int64_t> timeAgo(const QString& text, const QDateTime& now) {
    static const QRegularExpression pattern(u"^(\\d{1,6})(s|min|h|d)$"_s);
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    const QString unit = match.captured(2);
    const std::int64_t seconds = unit == u"s"     ? 1
                                 : unit == u"min" ? 60
                                 : unit == u"h"   ? 3'600
                                                  : 86'400;
    return now.toMSecsSinceEpoch() - match.captured(1).toLongLong() * seconds * 1'000;
}

} // namespace

std::optional<std::int64_t> parseTime(const QString& text, const QDateTime& now) {
    if (const std::optional<std::int64_t> ago = timeAgo(text, now))
        return ago;
    for (const QString& form : {u"H:mm"_s, u"H:mm:ss"_s}) {
        const QTime time = QTime::fromString(text, form);
        if (!time.isValid())
            continue;
        const QDateTime today(now.date(), time);
        return (today <= now ? today : QDateTime(now.date().addDays(-1), time)).toMSecsSinceEpoch();
    }
    const QDate date = QDate::fromString(text, Qt::ISODate);
    const QDateTime time =
        date.isValid() && text.size() == 10
            ? date.startOfDay()
            : QDateTime::fromString(QString(text).replace(u' ', u'T'), Qt::ISODate);
    return time.isValid() ? std::optional<std::int64_t>(time.toMSecsSinceEpoch()) : std::nullopt;
}

} // namespace skyhold
