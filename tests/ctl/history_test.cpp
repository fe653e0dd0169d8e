// SPDX-License-Identifier: GPL-3.0-or-later
// What `skyholdctl history` and `why` show, and the times that they are asked for.
#include "ctl/history.h"
#include "ctl/times.h"
#include "history/why_text.h"

#include <QJsonArray>

#include <gtest/gtest.h>

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

std::int64_t at(const char* local) {
    return QDateTime::fromString(QString::fromLatin1(local), Qt::ISODate).toMSecsSinceEpoch();
}

TEST(Times, asPeopleWriteThem) {
    const QDateTime now = QDateTime::fromMSecsSinceEpoch(at("2026-11-23T12:00:00"));
    const std::pair<const char*, const char*> cases[] = {
        {"2026-11-22", "2026-11-22T00:00:00"},
        {"2026-11-22T23:41", "2026-11-22T23:41:00"},
        {"2026-11-22 23:41:10", "2026-11-22T23:41:10"},
        {"11:59", "2026-11-23T11:59:00"},
        {"23:41:10", "2026-11-22T23:41:10"},
        {"90min", "2026-11-23T10:30:00"},
        {"12h", "2026-11-23T00:00:00"},
        {"40s", "2026-11-23T11:59:20"},
        {"7d", "2026-11-16T12:00:00"}};
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(parseTime(QString::fromLatin1(text), now), at(expected)) << text;
    EXPECT_EQ(parseTime(u"1970-01-01T00:00:01Z"_s, now), 1'000);
    for (const char* text : {"", "yesterday", "25:00", "12", "-2h", "2026-13-01", "9999999d"})
        EXPECT_FALSE(parseTime(QString::fromLatin1(text), now)) << text;
}

TEST(HistoryText, hasClockTimesDurationsAndCauses) {
    const auto change = [](const char* when, const QString& state, const QJsonArray& causes) {
        return HistoryEvent{at(when), u"verdict"_s, {}, state, {}, {{u"causes"_s, causes}}};
    };
    const QJsonObject gust{{u"kind"_s, u"level"_s},  {u"name"_s, u"gust"_s}, {u"level"_s, 2},
                           {u"label"_s, u"Gusty"_s}, {u"value"_s, 34.2},     {u"unit"_s, u"km/h"_s},
                           {u"limit"_s, 20},         {u"relation"_s, u">"_s}};
    const QJsonObject rain{{u"kind"_s, u"level"_s},
                           {u"name"_s, u"rain"_s},
                           {u"label"_s, u"Wet"_s},
                           {u"value"_s, 2'100}};
    const QJsonObject dew{{u"kind"_s, u"level"_s}, {u"name"_s, u"dew_spread"_s},
                          {u"value"_s, 2.9},       {u"unit"_s, u"°C"_s},
                          {u"limit"_s, 3},         {u"relation"_s, u"<="_s}};
    const QJsonObject station{{u"kind"_s, u"source"_s}, {u"name"_s, u"station"_s}};
    VerdictPeriod first{
        at("2026-11-22T23:41:10"), at("2026-11-23T00:12:40"), false, u"unsafe"_s, {}};
    first.changes = {change("2026-11-22T23:41:10", u"unsafe"_s, {gust}),
                     change("2026-11-22T23:50:00", u"unsafe"_s, {rain, gust, dew, station})};
    const VerdictPeriod second{at("2026-11-23T00:12:40"),
                               at("2026-11-23T02:15:00"),
                               true,
                               u"safe"_s,
                               {change("2026-11-23T00:12:40", u"safe"_s, {})}};
    const HistoryEvent roof{at("2026-11-23T00:12:41"),     u"roof"_s, {}, u"open"_s,
                            u"Command to open the roof"_s, {}};
    EXPECT_EQ(historyText({first, second}, {roof}),
              u"2026-11-22\n"
              "23:41:10 – 00:12:40  unsafe   31 min 30 s   gust 34.2 > 20 km/h, rain Wet, "
              "dew spread 2.9 <= 3 °C, station data\n"
              "2026-11-23\n"
              "00:12:40 – now       safe     2 h 2 min\n"
              "00:12:41  Command to open the roof\n"_s);
}

TEST(WhyText, isTheDocumentInWords) {
    const QJsonObject wind{{u"value"_s, 23.4},
                           {u"unit"_s, u"km/h"_s},
                           {u"level"_s, 3},
                           {u"label"_s, u"Very Windy"_s},
                           {u"limits"_s, QJsonArray{10, 20, 99}},
                           {u"armed"_s, QJsonArray{2, 3}}};
    const QJsonObject document{
        {u"verdict"_s, u"unsafe"_s},
        {u"safe"_s, false},
        {u"since"_s,
         QDateTime::fromMSecsSinceEpoch(at("2026-11-23T05:09:30"), Qt::UTC).toString(Qt::ISODate)},
        {u"causes"_s, QJsonArray{QJsonObject{{u"text"_s, u"Wind 23.4 km/h, above 20\x1b[2J"_s}}}},
        {u"sources"_s, QJsonObject{{u"station"_s, QJsonObject{{u"state"_s, u"old"_s}}},
                                   {u"sensor"_s, QJsonObject{{u"state"_s, u"ok"_s}}}}},
        {u"readings"_s, QJsonObject{{u"wind"_s, wind}}}};
    const QString text = whyText(document);
    EXPECT_TRUE(text.startsWith(u"UNSAFE since 2026-11-23 05:09:30\n"
                                "  Wind 23.4 km/h, above 20"_s))
        << qPrintable(text);
    EXPECT_FALSE(text.contains(u'\x1b'));
    EXPECT_TRUE(text.contains(u"Weather station: old\n"_s));
    EXPECT_TRUE(text.contains(
        u"Wind  23.4 km/h  Very Windy (3)  limits 10, 20, 99; unsafe at level 2, 3\n"_s));
    // A verdict that is safe and not to be trusted is not said to be safe.
    EXPECT_TRUE(
        whyText({{u"verdict"_s, u"safe"_s}, {u"safe"_s, false}}).contains(u"not to be trusted"_s));
}

} // namespace
} // namespace skyhold
