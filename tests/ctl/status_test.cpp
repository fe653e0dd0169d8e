// SPDX-License-Identifier: GPL-3.0-or-later
#include "ctl/status.h"
#include "ctl/verdict.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <gtest/gtest.h>

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

// A safe night.
QJsonObject safeDocument() {
    return QJsonDocument::fromJson(R"({
        "schema": 1, "session": "running", "safe": true, "verdict": "safe", "causes": [],
        "nearest": {"text": "nearest: humidity 86 of 90 %"},
        "readings": {
            "rain": {"value": 2600, "unit": "", "label": "Dry", "unsafe": false},
            "cloud": {"value": -25.66, "unit": "°C", "label": "Cle\u001bar", "unsafe": false},
            "wind": {"value": null, "unit": "km/h", "label": "", "unsafe": false}},
        "sources": {"sensor": {"state": "ok", "age_s": 2, "ready": true, "detail": ""},
                    "station": {"state": "ok", "age_s": 12, "detail": ""}}})")
        .object();
}

QJsonObject with(QJsonObject document, const QString& path, const QJsonValue& value) {
    const QString name = path.section(u'/', 0, 0);
    const QString rest = path.section(u'/', 1);
    if (rest.isEmpty())
        document[name] = value;
    else
        document[name] = with(document[name].toObject(), rest, value);
    return document;
}

// Whatever could deny it does, and so does an entry that is missing or of another type.
TEST(StatusVerdict, onlyOneDocumentIsSafe) {
    const QJsonObject safe = safeDocument();
    ASSERT_EQ(exitStatus(verdictOf(safe)), 0);
    const QJsonValue none(QJsonValue::Undefined);
    const struct {
        const char* entry;
        QJsonValue value;
        int status;
        QString cause;
    } cases[] = {
        {"safe", false, 1, u"There have been no readings for a while"_s}, // a cycle is overdue
        {"safe", 1, 2, {}},
        {"safe", none, 2, {}},
        {"verdict", u"unsafe"_s, 2, {}}, // and safe: makes no sense
        {"verdict", none, 2, {}},
        {"session", u"idle"_s, 2, u"No monitoring session is running"_s},
        {"session", none, 2, {}},
        {"sources", none, 2, u"Station data: unknown"_s},
        {"sources/station/state", u"old"_s, 2, u"Station data: old"_s},
        {"sources/sensor/state", u"failed"_s, 2, u"Kiv_Nubilo: failed"_s},
        {"sources/sensor/ready", false, 2, u"Kiv_Nubilo has no data yet"_s},
        {"sources/sensor/ready", u"true"_s, 2, {}},
    };
    for (const auto& [entry, value, status, cause] : cases) {
        SCOPED_TRACE(entry);
        const QJsonObject document = with(safe, QLatin1String(entry), value);
        EXPECT_EQ(exitStatus(verdictOf(document)), status);
        ASSERT_FALSE(causesOf(document).isEmpty());
        EXPECT_TRUE(causesOf(document)[0].startsWith(cause));
    }
    for (const QString& verdict : {u"unsafe"_s, u"waiting"_s})
        EXPECT_EQ(exitStatus(verdictOf(with(with(safe, u"safe"_s, false), u"verdict"_s, verdict))),
                  1);
    EXPECT_EQ(exitStatus(verdictOf({})), 2);
}

TEST(Status, isShownAsTextAndLine) {
    QJsonObject document = safeDocument();
    EXPECT_EQ(statusText(document).toStdString(), "SAFE  nearest: humidity 86 of 90 %\n"
                                                  "Cloud  -25.7 °C  Cle ar\n"
                                                  "Rain       2600  Dry\n"
                                                  "Wind          –  \n"
                                                  "Kiv_Nubilo ok, 2 s old; station ok, 12 s old\n");
    document = with(with(document, u"safe"_s, false), u"verdict"_s, u"unsafe"_s);
    document = with(document, u"readings/rain/unsafe"_s, true);
    document[u"causes"_s] =
        QJsonArray{QJsonObject{{u"text"_s, u"Rain: Dry at 2600,\nsince 05:09:30"_s}},
                   QJsonObject{{u"text"_s, u"Gust 34.2 km/h, above 20, since 05:10:00"_s}}};
    EXPECT_TRUE(statusText(document).startsWith(
        u"UNSAFE  Rain: Dry at 2600, since 05:09:30\n"
        "        Gust 34.2 km/h, above 20, since 05:10:00\n"
        "Cloud  -25.7 °C  Cle ar\nRain       2600  Dry (unsafe)\n"_s));
    EXPECT_EQ(
        statusLine(document).toStdString(),
        "UNSAFE | Rain: Dry at 2600, since 05:09:30; Gust 34.2 km/h, above 20, since 05:10:00 "
        "| Cloud -25.7 °C Cle ar | Rain 2600 Dry | Wind – ");
}

} // namespace
} // namespace skyhold
