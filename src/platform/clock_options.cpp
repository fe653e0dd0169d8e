// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/clock_options.h"

#include "platform/log.h"

#include <QCommandLineParser>

#include <cmath>
#include <limits>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

// A clock that runs faster than this passes a simulated day in less than a second.
constexpr double kMaxScale = 100'000;
// Milliseconds since 1970 that still fit in a double without loss.
constexpr std::int64_t kMaxRealMs = std::int64_t{1} << 53;

void reportUnreadable(const QString& option, const QString& value) {
    qCWarning(programLog, "--%s: \"%s\" is not valid and is ignored", qUtf8Printable(option),
              qUtf8Printable(value));
}

} // namespace

QList<QCommandLineOption> clockOptions() {
    return {{u"time-from"_s, u"Local time at which this program's clock begins."_s,
             u"yyyy-mm-ddThh:mm:ss"_s},
            {u"time-origin"_s,
             u"Real time, in milliseconds since 1970, at which the clock begins (default: now)."_s,
             u"MS"_s},
            {u"time-scale"_s, u"Runs the clock N times as fast as real time."_s, u"N"_s}};
}

ClockStart clockStartFromArguments(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.addOptions(clockOptions());
    parser.parse(arguments);

    std::optional<QDateTime> from;
    std::optional<std::int64_t> realOrigin;
    std::optional<double> scale;
    if (const QString text = parser.value(u"time-from"_s); parser.isSet(u"time-from"_s)) {
        const QDateTime time = QDateTime::fromString(text, Qt::ISODate).toLocalTime();
        if (time.isValid())
            from = time;
        else
            reportUnreadable(u"time-from"_s, text);
    }
    if (const QString text = parser.value(u"time-origin"_s); parser.isSet(u"time-origin"_s)) {
        bool number = false;
        const qint64 ms = text.toLongLong(&number);
        if (number && std::abs(ms) < kMaxRealMs)
            realOrigin = ms;
        else
            reportUnreadable(u"time-origin"_s, text);
    }
    if (const QString text = parser.value(u"time-scale"_s); parser.isSet(u"time-scale"_s)) {
        bool number = false;
        const double factor = text.toDouble(&number);
        if (number && factor > 0 && factor <= kMaxScale)
            scale = factor;
        else
            reportUnreadable(u"time-scale"_s, text);
    }
    if (!from && !realOrigin && !scale)
        return {};

    ClockStart start;
    start.realOriginMs = realOrigin.value_or(QDateTime::currentMSecsSinceEpoch());
    start.origin = from.value_or(QDateTime::fromMSecsSinceEpoch(start.realOriginMs));
    start.scale = scale.value_or(1);
    return start;
}

} // namespace skyhold
