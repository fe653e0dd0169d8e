// SPDX-License-Identifier: GPL-3.0-or-later
#include "gateway/hook_events.h"

#include <algorithm>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

QString verdictOf(const View& view) {
    if (view.word() == Word::Unknown)
        return u"stopped"_s;
    if (view.safe())
        return u"safe"_s;
    return view.snapshot->document[u"verdict"_s] == u"waiting"_s ? u"waiting"_s : u"unsafe"_s;
}

bool hasMore(const QStringList& these, const QStringList& those) {
    return std::any_of(these.begin(), these.end(),
                       [&](const QString& name) { return !those.contains(name); });
}

} // namespace

HookState hookState(const View& view) {
    HookState state{.verdict = verdictOf(view), .failed = {}, .alarm = {}};
    if (state.verdict == u"stopped"_s)
        return state;
    const QJsonObject& document = view.snapshot->document;
    const QJsonObject sources = document[u"sources"_s].toObject();
    for (const QString& name : {u"sensor"_s, u"station"_s}) {
        if (sources[name][u"state"_s] != u"ok"_s)
            state.failed += name;
    }
    if (document[u"alarm"_s][u"sounding"_s] == true)
        state.alarm = document[u"alarm"_s][u"id"_s].toString();
    return state;
}

QStringList eventsBetween(const HookState* before, const HookState& after) {
    static const HookState nothing;
    const HookState& from = before ? *before : nothing;
    QStringList events;
    if (after.verdict != from.verdict)
        events += after.verdict;
    // Without a session nothing is known of the sources, which is no return of theirs.
    if (after.verdict == u"stopped"_s)
        return events;
    if (hasMore(after.failed, from.failed))
        events += u"source-failed"_s;
    if (hasMore(from.failed, after.failed))
        events += u"source-back"_s;
    if (!after.alarm.isEmpty() && after.alarm != from.alarm)
        events += u"alarm"_s;
    return events;
}

} // namespace skyhold
