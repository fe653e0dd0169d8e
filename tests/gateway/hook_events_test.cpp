// SPDX-License-Identifier: GPL-3.0-or-later
#include "gateway/hook_events.h"
#include "state_of.h"

#include <gtest/gtest.h>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

QJsonObject changed(QJsonObject document, const QString& verdict, const QString& station,
                    const QString& alarm) {
    document[u"verdict"_s] = verdict;
    document[u"safe"_s] = verdict == u"safe"_s;
    QJsonObject sources = document[u"sources"_s].toObject();
    sources[u"station"_s] = QJsonObject{{u"state"_s, station}};
    document[u"sources"_s] = sources;
    document[u"alarm"_s] = QJsonObject{{u"id"_s, alarm}, {u"sounding"_s, !alarm.isEmpty()}};
    return document;
}

} // namespace

TEST(HookEvents, AreTheChanges) {
    const struct {
        const char* verdict;
        const char* station;
        const char* alarm;
        std::int64_t ageMs;
        const char* events;
    } steps[] = {
        {"waiting", "old", "", 0, "waiting source-failed"},
        {"waiting", "old", "", 0, ""},
        {"safe", "ok", "", 0, "safe source-back"},
        {"unsafe", "ok", "a3", 0, "unsafe alarm"},
        {"unsafe", "ok", "", 0, ""},
        {"unsafe", "failed", "a41", 0, "source-failed alarm"},
        {"unsafe", "failed", "a41", 60'000, "stopped"}, // nothing is heard
        {"unsafe", "failed", "a41", 60'000, ""},
        {"safe", "ok", "", 0, "safe"},
        {"safe", "old", "", 0, "source-failed"}, // one that does not count
        {"none", "ok", "", 0, "unsafe source-back"},
    };
    std::optional<HookState> before;
    for (const auto& step : steps) {
        const QJsonObject document =
            changed(safeDocument(), QString::fromLatin1(step.verdict),
                    QString::fromLatin1(step.station), QString::fromLatin1(step.alarm));
        StateBoard board;
        board.publish(snapshotOf(QJsonDocument(document).toJson(), kHeard));
        board.answered(kHeard + step.ageMs);
        const HookState after = hookState(board.look(kHeard + step.ageMs));
        EXPECT_EQ(eventsBetween(before ? &*before : nullptr, after).join(u' ').toStdString(),
                  step.events)
            << step.verdict << ' ' << step.station << ' ' << step.ageMs;
        before = after;
    }
}

} // namespace skyhold
