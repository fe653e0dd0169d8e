// SPDX-License-Identifier: GPL-3.0-or-later
#include "replay/report.h"

#include "history/json.h"
#include "history/short_cause.h"
#include "platform/text_forms.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>
#include <cmath>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

QString duration(std::int64_t ms) {
    return durationText((ms + 500) / 1'000);
}

QString count(int closures) {
    return closures == 1 ? u"1 closure"_s : u"%1 closures"_s.arg(closures);
}

// Of a kind of cause, without its value: "gust", "station data", "safe delay".
QString shareName(const ReplayCause& cause) {
    if (cause.delay)
        return u"safe delay"_s;
    if (cause.kind == CauseKind::Source)
        return cause.source == SourceName::Station ? u"station data"_s : u"sensor program"_s;
    return QString(QLatin1String(rowOf(cause.quantity).key)).replace(u'_', u' ');
}

// The causes of either, in the order of the first that has them.
std::vector<ReplayCause> causesOf(const Comparison& comparison) {
    std::vector<ReplayCause> causes;
    for (const ReplayOutcome* outcome : {&comparison.inForce, &comparison.tried}) {
        for (const ReplayShare& share : outcome->shares) {
            const bool known = std::ranges::any_of(
                causes, [&share](const ReplayCause& cause) { return cause.sameKind(share.cause); });
            if (!known)
                causes.push_back(share.cause);
        }
    }
    std::ranges::stable_sort(causes, {}, &ReplayCause::delay);
    return causes;
}

ReplayShare shareOf(const ReplayOutcome& outcome, const ReplayCause& cause) {
    for (const ReplayShare& share : outcome.shares) {
        if (share.cause.sameKind(cause))
            return share;
    }
    return {cause, 0, 0};
}

using Row = std::vector<QString>;

// Columns under each other, the first to the left and the others to the right.
QString table(const std::vector<Row>& rows) {
    std::vector<qsizetype> widths;
    for (const Row& row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], row[i].size());
    }
    QString text;
    for (const Row& row : rows) {
        QString line;
        for (std::size_t i = 0; i < row.size(); ++i)
            line += i == 0 ? row[i].leftJustified(widths[i])
                           : u"  "_s + row[i].rightJustified(widths[i]);
        while (line.endsWith(u' '))
            line.chop(1);
        text += line + u'\n';
    }
    return text;
}

void addColumns(std::vector<Row>& rows, const ReplayOutcome& outcome,
                const std::vector<ReplayCause>& causes, const QString& title) {
    std::size_t row = 0;
    const auto add = [&](const QString& closures, const QString& unsafe) {
        rows[row].push_back(closures);
        rows[row++].push_back(unsafe);
    };
    add(title, QString());
    add(u"closures"_s, u"unsafe"_s);
    add(QString::number(outcome.closures), duration(outcome.unsafeMs));
    for (const ReplayCause& cause : causes) {
        const ReplayShare share = shareOf(outcome, cause);
        add(QString::number(share.closures), duration(share.unsafeMs));
    }
}

QString number(double value) {
    return numberText(std::round(value * 10) / 10, {});
}

QJsonObject outcomeJson(const ReplayOutcome& outcome) {
    QJsonArray causes;
    for (const ReplayShare& share : outcome.shares)
        causes.append(QJsonObject{{u"name"_s, shareName(share.cause)},
                                  {u"closures"_s, share.closures},
                                  {u"unsafe_s"_s, static_cast<double>(share.unsafeMs) / 1'000}});
    return {{u"closures"_s, outcome.closures},
            {u"unsafe_s"_s, static_cast<double>(outcome.unsafeMs) / 1'000},
            {u"watched_s"_s, static_cast<double>(outcome.watchedMs) / 1'000},
            {u"cycles"_s, static_cast<qint64>(outcome.cycles)},
            {u"causes"_s, causes}};
}

} // namespace

QString shortCause(const ReplayCause& cause, KeptUnits units) {
    if (cause.delay || cause.kind == CauseKind::Source)
        return shareName(cause);
    const std::size_t index = measured(cause.quantity);
    return shortCause(ShortCause{.name = shareName(cause),
                                 .label = cause.limit ? QString() : u"level %1"_s.arg(cause.level),
                                 .value = cause.value,
                                 .above = cause.above,
                                 .limit = cause.limit,
                                 .unit = measuredUnit(index, units)});
}

QString comparisonSummary(const Comparison& comparison) {
    const ReplayOutcome& was = comparison.inForce;
    const ReplayOutcome& is = comparison.tried;
    if (was.closures == is.closures && was.unsafeMs == is.unsafeMs)
        return u"%1, unsafe %2"_s.arg(count(was.closures), duration(was.unsafeMs));
    return u"%1 instead of %2, unsafe %3 instead of %4"_s.arg(
        count(is.closures), QString::number(was.closures), duration(is.unsafeMs),
        duration(was.unsafeMs));
}

QString comparisonText(const Comparison& comparison, const QString& changes, KeptUnits units) {
    const std::vector<ReplayCause> causes = causesOf(comparison);
    std::vector<Row> rows{{QString()}, {QString()}, {u"all"_s}};
    for (const ReplayCause& cause : causes)
        rows.push_back({u"  "_s + shareName(cause)});
    addColumns(rows, comparison.inForce, causes, u"in force"_s);
    if (!changes.isEmpty())
        addColumns(rows, comparison.tried, causes, u"changed"_s);
    QString text = u"%1 cycles, %2 watched\n"_s.arg(comparison.inForce.cycles)
                       .arg(duration(comparison.inForce.watchedMs));
    if (!changes.isEmpty())
        text += u"changed: "_s + changes + u'\n';
    text += u'\n' + table(rows);
    if (changes.isEmpty()) {
        text += u'\n';
        for (const ReplayPeriod& period : comparison.inForce.periods)
            text += u"%1  unsafe  %2  %3\n"_s.arg(periodText(period.fromUtcMs, period.toUtcMs),
                                                  duration(period.toUtcMs - period.fromUtcMs),
                                                  shortCause(period.cause, units));
        return text;
    }
    text += u'\n' + comparisonSummary(comparison) + u'\n';
    if (comparison.differences.empty())
        return text + u"No difference at any time\n"_s;
    text += u'\n';
    for (const Difference& difference : comparison.differences)
        text += u"%1  %2  %3  %4\n"_s.arg(periodText(difference.fromUtcMs, difference.toUtcMs),
                                          difference.unsafeInForce ? u"safe instead of unsafe"_s
                                                                   : u"unsafe instead of safe"_s,
                                          duration(difference.toUtcMs - difference.fromUtcMs),
                                          shortCause(difference.cause, units));
    return text;
}

QJsonObject comparisonJson(const Comparison& comparison, KeptUnits units) {
    QJsonArray differences;
    for (const Difference& difference : comparison.differences)
        differences.append(QJsonObject{{u"from"_s, isoTime(difference.fromUtcMs)},
                                       {u"to"_s, isoTime(difference.toUtcMs)},
                                       {u"unsafe_in_force"_s, difference.unsafeInForce},
                                       {u"cause"_s, shortCause(difference.cause, units)}});
    return {{u"in_force"_s, outcomeJson(comparison.inForce)},
            {u"changed"_s, outcomeJson(comparison.tried)},
            {u"differences"_s, differences}};
}

QString suggestionText(const Suggestion& suggestion, const Rules& inForce, KeptUnits units) {
    QString text = u"%1 of %2 nights were called safe throughout\n"_s.arg(suggestion.safeNights)
                       .arg(suggestion.nights);
    if (suggestion.safeNights == 0)
        return text;
    std::vector<Row> rows{{QString(), u"lowest"_s, u"highest"_s, QString(), u"limits"_s}};
    for (const Quantity quantity : kAllQuantities) {
        const std::optional<Extent>& seen = suggestion.seen[quantity];
        if (!seen)
            continue;
        const QuantityRow& row = rowOf(quantity);
        Row shown{QString(QLatin1String(row.key)).replace(u'_', u' '), number(seen->low),
                  number(seen->high), measuredUnit(measured(quantity), units)};
        for (std::size_t i = 0; row.hasLimits() && i < kLevelCount; ++i) {
            const double limit = inForce.levels[quantity].limits[i];
            const double above = limit - seen->high;
            const double below = seen->low - limit;
            const QString distance = above >= 0   ? u"%1 above"_s.arg(number(above))
                                     : below >= 0 ? u"%1 below"_s.arg(number(below))
                                                  : u"within"_s;
            shown.push_back(u"%1 (%2)"_s.arg(number(limit), distance));
        }
        rows.push_back(shown);
    }
    return text + u'\n' + table(rows);
}

QJsonObject suggestionJson(const Suggestion& suggestion, const Rules& inForce, KeptUnits units) {
    QJsonObject quantities;
    for (const Quantity quantity : kAllQuantities) {
        const std::optional<Extent>& seen = suggestion.seen[quantity];
        if (!seen)
            continue;
        QJsonArray limits;
        for (std::size_t i = 0; rowOf(quantity).hasLimits() && i < kLevelCount; ++i)
            limits.append(inForce.levels[quantity].limits[i]);
        quantities[QLatin1String(rowOf(quantity).key)] =
            QJsonObject{{u"lowest"_s, seen->low},
                        {u"highest"_s, seen->high},
                        {u"unit"_s, measuredUnit(measured(quantity), units)},
                        {u"limits"_s, limits}};
    }
    return {{u"nights"_s, suggestion.nights},
            {u"safe_nights"_s, suggestion.safeNights},
            {u"quantities"_s, quantities}};
}

QString periodText(std::int64_t fromUtcMs, std::int64_t toUtcMs) {
    const QDateTime from = QDateTime::fromMSecsSinceEpoch(fromUtcMs);
    const QDateTime to = QDateTime::fromMSecsSinceEpoch(toUtcMs);
    const QString end =
        from.date() == to.date() ? clockText(toUtcMs) : to.toString(u"yyyy-MM-dd HH:mm:ss"_s);
    return from.toString(u"yyyy-MM-dd HH:mm:ss"_s) + u" \u2013 "_s + end;
}

} // namespace skyhold
