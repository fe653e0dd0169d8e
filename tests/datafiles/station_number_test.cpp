#include "datafiles/station_number.h"

#include <gtest/gtest.h>

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

const NumberForms kPoint{};
const NumberForms kComma{u","_s, u"."_s};

const char* shown(const char16_t* text) {
    static QByteArray bytes;
    bytes = QString::fromUtf16(text).toUtf8();
    return bytes.constData();
}

TEST(StationNumber, PointIsTheDecimalPointInEveryLocale) {
    const std::pair<const char16_t*, std::optional<double>> cases[] = {
        {u"12.5", 12.5}, {u" -3.25 ", -3.25}, {u"1012.5", 1012.5}, {u"85", 85},      {u"+7", 7},
        {u"1e2", 100},   {u"1e-05", 1e-5},    {u"-.5", -0.5},      {u"", {}},        {u" ", {}},
        {u"--", {}},     {u"nan", {}},        {u"inf", {}},        {u"-inf", {}},    {u"1e999", {}},
        {u"12 km", {}},  {u"0x10", {}},       {u".", {}},          {u"-", {}},       {u"1.2.3", {}},
        {u"1,2,3", {}},  {u"1.012.5", {}},    {u"1,012.5", {}},    {u"1.012,5", {}}, {u"1 012", {}},
    };
    for (const auto& [text, value] : cases) {
        EXPECT_EQ(ParseStationNumber(text, kPoint), value) << shown(text);
        EXPECT_EQ(ParseStationNumber(text, kComma), value) << shown(text);
    }
    EXPECT_EQ(ParseStationNumber(u"12,5", kComma), 12.5) << "the locale's own form";
    EXPECT_FALSE(ParseStationNumber(u"12,5", kPoint)) << "never 125";
    for (const char16_t c : {u'1', u','})
        EXPECT_FALSE(ParseStationNumber(QString(10'000'000, c), kPoint));
}

TEST(StationDate, OrderSeparatorsCenturiesAndRollOver) {
    // The last two: day 2026 of November 2016; with the other order the 2026th month.
    const struct {
        const char16_t* text;
        int dateFormat;
        const char* date;
    } cases[] = {
        {u"16/11/2026", 0, "2026-11-16"}, {u"11/16/2026", 1, "2026-11-16"},
        {u"16-11-26", 0, "2026-11-16"},   {u"16.11.2026", 0, "2026-11-16"},
        {u" 1/ 2 /26 ", 0, "2026-02-01"}, {u"01/02/26", -1, "2026-02-01"},
        {u"01/01/00", 0, "2000-01-01"},   {u"01/01/29", 0, "2029-01-01"},
        {u"01/01/30", 0, "1930-01-01"},   {u"01/01/99", 0, "1999-01-01"},
        {u"31/02/2026", 0, "2026-03-03"}, {u"11/16/2026", 0, "2027-04-11"},
        {u"0/1/2026", 0, "2025-12-31"},   {u"1/0/2026", 0, "2025-12-01"},
        {u"1/1/9999", 0, "9999-01-01"},   {u"-1/1/2026", 0, "2025-12-30"},
        {u"2026-11-16", 0, "2022-05-19"}, {u"2026-11-16", 1, "2184-10-11"},
    };
    for (const auto& [text, dateFormat, date] : cases)
        EXPECT_EQ(ParseStationDate(text, dateFormat).value_or(QDate()).toString(Qt::ISODate),
                  QLatin1String(date))
            << shown(text);
    for (const char16_t* none :
         {u"16/11/2026 22:00", u"16/11", u"16/11-2026", u"", u"16//2026", u"16/11/", u"a/b/c",
          u"1/1/99999", u"32000/1/9999", u"1/1/2026/", u"1/1/-26", u"1e1/1/26"})
        EXPECT_FALSE(ParseStationDate(none, 0)) << shown(none);
}

TEST(StationTime, TwelveAndTwentyFourHours) {
    const std::pair<const char16_t*, QTime> cases[] = {
        {u"7:05", {7, 5}},           {u"22:15", {22, 15}},
        {u"22:15:59", {22, 15, 59}}, {u" 7:05 pm ", {19, 5}},
        {u"7:05:09PM", {19, 5, 9}},  {u"12:00 AM", {0, 0}},
        {u"12:30 PM", {12, 30}},     {u"00:00", {0, 0}},
        {u"14.05.09", {14, 5, 9}},   {u"9:5:7", {9, 5, 7}},
        {u"22.15", {22, 15}},        {u"16/11/2026 14:05:09", {14, 5, 9}},
        {u"16.11.26 9.5", {9, 5}},   {u"11-16-2026  2:05 PM", {14, 5}},
    };
    for (const auto& [text, time] : cases)
        EXPECT_EQ(parseStationTime(text), time) << shown(text);
    for (const char16_t* none : {u"24:00", u"13:00 PM", u"0:30 AM", u"7", u"", u"PM", u"22:60",
                                 u"22:15:60", u"22:15:59:1", u"-1:00", u"22:+5", u"22:", u"22:005",
                                 u"22.15:9", u"at 14:05", u"16/11/2026", u"14:05 16/11/2026"})
        EXPECT_FALSE(parseStationTime(none)) << shown(none);
}

} // namespace
} // namespace skyhold
