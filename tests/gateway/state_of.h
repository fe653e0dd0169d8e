// SPDX-License-Identifier: GPL-3.0-or-later
// A monitor that has just said something, for tests.
#pragma once

#include "gateway/routes.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace skyhold {

inline constexpr std::int64_t kHeard = 1'000'000; // when it was heard

inline QJsonObject measuredValue(const QJsonValue& value, const QString& unit) {
    return {{QStringLiteral("value"), value}, {QStringLiteral("unit"), unit}};
}

// Safe, 10 s from cycle to cycle, clients drive the roof, which is closed.
inline QJsonObject safeDocument() {
    using namespace Qt::Literals::StringLiterals;
    QJsonObject wind = measuredValue(36, u"km/h"_s);
    wind[u"label"_s] = u"Windy"_s;
    wind[u"level"_s] = 2;
    wind[u"armed"_s] = QJsonArray{3};
    wind[u"limits"_s] = QJsonArray{10, 40};
    return {
        {u"schema"_s, 1},
        {u"monitor"_s, QJsonObject{{u"version"_s, u"1.2.3"_s}, {u"site"_s, u"Hill \"1\""_s}}},
        {u"time"_s, u"2026-11-23T05:12:40Z"_s},
        {u"cycle"_s, 7},
        {u"interval_s"_s, 10},
        {u"session"_s, u"running"_s},
        {u"safe"_s, true},
        {u"verdict"_s, u"safe"_s},
        {u"since"_s, u"2026-11-23T05:00:00Z"_s},
        {u"causes"_s, QJsonArray{}},
        {u"readings"_s, QJsonObject{{u"cloud"_s, measuredValue(-4, u"°F"_s)},
                                    {u"temperature"_s, measuredValue(50, u"°F"_s)},
                                    {u"dew_point"_s, measuredValue(QJsonValue::Null, u"°F"_s)},
                                    {u"humidity"_s, measuredValue(80.5, u"%"_s)},
                                    {u"wind"_s, wind},
                                    {u"gust"_s, measuredValue(10, u"furlongs"_s)},
                                    {u"wind_direction"_s, measuredValue(0, u"°"_s)},
                                    {u"pressure"_s, measuredValue(30, u"inHg"_s)}}},
        {u"sources"_s,
         QJsonObject{
             {u"sensor"_s, QJsonObject{{u"state"_s, u"ok"_s}, {u"age_s"_s, 2}, {u"ready"_s, true}}},
             {u"station"_s, QJsonObject{{u"state"_s, u"ok"_s}, {u"age_s"_s, 12}}}}},
        {u"roof"_s, QJsonObject{{u"driven"_s, false}, {u"state"_s, u"closed"_s}}},
    };
}

// A gateway that has heard this, asked some time later.
struct HeardSite {
    StateBoard board;
    HistoryWorker history{QString()};
    Site site{.board = board, .hosts = HostCheck({}), .alpaca = {}, .history = history};
    std::int64_t nowMs = kHeard;

    explicit HeardSite(const QJsonObject& document) {
        board.publish(snapshotOf(QJsonDocument(document).toJson(), kHeard));
        board.answered(kHeard);
        site.nowMs = [this] {
            board.answered(nowMs);
            return nowMs;
        };
    }

    Handling ask(const Request& request) { return route(request, site); }
    // The parameters of a GET are in its path.
    Answer answer(const char* method, const QByteArray& path, const QByteArray& body = {}) {
        const qsizetype mark = path.indexOf('?');
        Request request{.method = method,
                        .path = path.first(mark < 0 ? path.size() : mark),
                        .body = body,
                        .host = "localhost"};
        if (mark >= 0)
            request.query = parseForm(path.sliced(mark + 1)).value_or(Parameters());
        const Handling handling = ask(request);
        if (const auto* later = std::get_if<LaterAnswer>(&handling)) {
            Answer came{.status = 0};
            (*later)([&came](Answer answer) { came = std::move(answer); });
            return came;
        }
        return std::get<Answer>(handling);
    }
};

} // namespace skyhold
