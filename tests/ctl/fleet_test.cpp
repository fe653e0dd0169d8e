// SPDX-License-Identifier: GPL-3.0-or-later
#include "ctl/fleet.h"

#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QJsonObject>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

const QDateTime kNow(QDate(2026, 11, 23), QTime(5, 12, 40), Qt::UTC);

QByteArray document(const QString& verdict, int ageSeconds) {
    const QJsonObject well{{u"state"_s, u"ok"_s}, {u"ready"_s, true}};
    const QJsonArray rain{QJsonObject{{u"text"_s, u"Rain Wet"_s}}};
    return QJsonDocument(
               QJsonObject{{u"time"_s, kNow.addSecs(-ageSeconds).toString(Qt::ISODate)},
                           {u"interval_s"_s, 10},
                           {u"session"_s, u"running"_s},
                           {u"safe"_s, verdict == u"safe"},
                           {u"verdict"_s, verdict},
                           {u"causes"_s, verdict == u"safe" ? QJsonArray() : rain},
                           {u"sources"_s, QJsonObject{{u"sensor"_s, well}, {u"station"_s, well}}}})
        .toJson();
}

} // namespace

TEST(Fleet, IsSafeOnlyWhereEverythingSaysSo) {
    const struct {
        QByteArray state;
        const char* safe;
        const char* availability;
        const char* verdict;
        const char* cause;
    } cases[] = {
        {document(u"safe"_s, 3), "ON", "online", "SAFE", ""},
        {document(u"safe"_s, 17), "ON", "online", "SAFE", ""},
        {document(u"safe"_s, 18), "ON", "online", "UNKNOWN", "Its last word is 18 s old"},
        {document(u"safe"_s, -5), "ON", "online", "SAFE", ""},
        {document(u"safe"_s, -6), "ON", "online", "UNKNOWN", "Its clock is 6 s ahead"},
        {document(u"safe"_s, 3), "OFF", "online", "UNKNOWN", "Its topic \"safe\" is not ON"},
        {document(u"safe"_s, 3), "", "online", "UNKNOWN", "Its topic \"safe\" is not ON"},
        {document(u"safe"_s, 3), "ON", "offline", "UNKNOWN", "Its gateway is gone"},
        {document(u"safe"_s, 3), "ON", "", "UNKNOWN", "Its gateway is gone"},
        {document(u"unsafe"_s, 3), "ON", "online", "UNSAFE", "Rain Wet"},
        {document(u"waiting"_s, 3), "OFF", "online", "UNSAFE", "Rain Wet"},
        {document(u"unsafe"_s, 90), "OFF", "online", "UNKNOWN", "Its last word is 90 s old"},
        {"", "ON", "online", "UNKNOWN", "It has published no state for a while"},
        {"{\"safe\": true}", "ON", "online", "UNKNOWN", "No monitoring session is running"},
        {"rubbish", "ON", "online", "UNKNOWN", "It has published no state for a while"},
    };
    for (const auto& row : cases) {
        Fleet fleet(u"sky"_s);
        fleet.take({u"sky/hill/state"_s, row.state});
        fleet.take({u"sky/hill/safe"_s, row.safe});
        fleet.take({u"sky/hill/availability"_s, row.availability});
        const QList<FleetSite> sites = fleet.sites({}, kNow);
        ASSERT_EQ(sites.size(), 1);
        EXPECT_EQ(sites[0].verdict, QLatin1String(row.verdict)) << row.cause;
        EXPECT_EQ(sites[0].cause, QLatin1String(row.cause));
        EXPECT_EQ(fleetStatus(sites), row.verdict == QByteArray("SAFE") ? 0 : 1);
    }
}

TEST(Fleet, ListsAllSitesOrTheNamedOnes) {
    Fleet fleet(u"a/sky"_s);
    EXPECT_EQ(fleetStatus(fleet.sites({}, kNow)), 1); // nobody is not "all are safe"
    for (const QString& name : {u"valley"_s, u"hill"_s}) {
        fleet.take({u"a/sky/%1/state"_s.arg(name), document(u"safe"_s, 3)});
        fleet.take({u"a/sky/%1/safe"_s.arg(name), "ON"});
        fleet.take({u"a/sky/%1/availability"_s.arg(name), "online"});
    }
    fleet.take({u"a/sky/hill/readings/wind"_s, "3"});
    fleet.take({u"other/x/safe"_s, "ON"});
    fleet.take({u"a/sky/gone/safe"_s, "ON"});
    fleet.take({u"a/sky/gone/safe"_s, ""}); // removed
    EXPECT_EQ(fleetText(fleet.sites({}, kNow)), u"hill    SAFE         3 s\n"
                                                "valley  SAFE         3 s\n"_s);
    EXPECT_EQ(fleetStatus(fleet.sites({}, kNow)), 0);
    const QList<FleetSite> named = fleet.sites({u"hill"_s, u"lake"_s}, kNow);
    EXPECT_EQ(fleetText(named), u"hill  SAFE         3 s\n"
                                "lake  UNKNOWN        –  Nothing is published for it\n"_s);
    EXPECT_EQ(fleetStatus(named), 1);
    EXPECT_EQ(fleetJson(named).at(0)[u"age_s"_s], 3);
}

} // namespace skyhold
