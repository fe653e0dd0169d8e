// SPDX-License-Identifier: GPL-3.0-or-later
#include "gateway/routes.h"

#include "gateway/metrics.h"
#include "gateway/page.h"
#include "gateway/setup_page.h"
#include "model/roof_status.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

Handling healthz(const Request&, const View& view, Site&) {
    return view.live() ? textAnswer(200, "ok") : textAnswer(503, view.fault.toUtf8());
}

Handling status(const Request&, const View& view, Site&) {
    return jsonAnswer(view.documentText());
}

Handling events(const Request&, const View&, Site&) {
    return EventStream{};
}

Handling history(const Request& request, const View&, Site& site) {
    QByteArray fault;
    const auto question =
        historyQuestion(request.query, QDateTime::currentMSecsSinceEpoch(), fault);
    if (!question)
        return textAnswer(400, fault);
    return [&site, asked = *question](Reply reply) {
        site.history.ask(asked, std::move(reply));
    };
}

Handling metrics(const Request&, const View& view, Site& site) {
    return Answer{.type = "text/plain; version=0.0.4; charset=utf-8",
                  .body = metricsText(view, site.counts())};
}

Handling roofStatus(const Request&, const View& view, Site&) {
    return jsonAnswer(roofStatusJson(view.safe(), view.document()));
}

Handling description(const Request&, const View&, Site&);

struct Route {
    const char* path;
    const char* type; // of the answer
    const char* summary;
    Handling (*handle)(const Request&, const View&, Site&);
};

constexpr Route kRoutes[] = {
    {"/api/status", "application/json", "The state document: is it safe, why, since when", status},
    {"/api/events", "text/event-stream",
     "Server-sent events: \"state\" with each state document, \"alive\" every two seconds", events},
    {"/api/history", "application/json", "Readings, verdicts and events between two times",
     history},
    {"/metrics", "text/plain", "For Prometheus", metrics},
    {"/roof_status.json", "application/json", "The verdict for INDI's weather safety proxy",
     roofStatus},
    {"/healthz", "text/plain", "200 while the monitor is heard, else 503", healthz},
    {"/openapi.json", "application/json", "This description", description},
};

QJsonObject parameterOf(const char16_t* name, const char16_t* type, const char16_t* says) {
    return {{u"name"_s, QString::fromUtf16(name)},
            {u"in"_s, u"query"_s},
            {u"required"_s, false},
            {u"description"_s, QString::fromUtf16(says)},
            {u"schema"_s, QJsonObject{{u"type"_s, QString::fromUtf16(type)}}}};
}

Handling description(const Request&, const View&, Site&) {
    const QJsonArray times{
        parameterOf(u"since", u"string", u"ISO 8601, or milliseconds since 1970; a day ago"),
        parameterOf(u"until", u"string", u"the same; now"),
        parameterOf(u"points", u"integer", u"how many readings at most, 2 to 2000; 480")};
    QJsonObject paths;
    for (const Route& row : kRoutes) {
        const QJsonObject content{{QLatin1String(row.type), QJsonObject()}};
        const QJsonObject answer{{u"description"_s, u"OK"_s}, {u"content"_s, content}};
        QJsonObject get{{u"summary"_s, QLatin1String(row.summary)},
                        {u"responses"_s, QJsonObject{{u"200"_s, answer}}}};
        if (row.handle == history)
            get[u"parameters"_s] = times;
        paths[QLatin1String(row.path)] = QJsonObject{{u"get"_s, get}};
    }
    const QJsonObject info{{u"title"_s, u"Kiv_Skyhold"_s},
                           {u"version"_s, QStringLiteral(SKYHOLD_VERSION)},
                           {u"description"_s, u"What the sky monitor says. The Alpaca API, version "
                                              u"1, is beside this under /api/v1."_s}};
    const QJsonObject all{{u"openapi"_s, u"3.0.3"_s}, {u"info"_s, info}, {u"paths"_s, paths}};
    return jsonAnswer(QJsonDocument(all).toJson(QJsonDocument::Compact));
}

Answer notAllowed(const char* methods) {
    Answer answer = textAnswer(405, QByteArray("This takes ") + methods);
    answer.allow = methods;
    return answer;
}

QString siteName(const View& view) {
    const QString name = view.document()[u"monitor"_s][u"site"_s].toString();
    return name.isEmpty() ? u"Kiv_Skyhold"_s : name;
}

} // namespace

Handling route(const Request& request, Site& site) {
    if (!site.hosts.allows(request.host))
        return textAnswer(421, "This is not a name of this gateway (docs/network.md)");
    if (request.method != "GET" && !site.hosts.allowsOrigin(request.origin, request.host))
        return textAnswer(403, "A page from elsewhere cannot write here");
    const View view = site.board.look(site.nowMs());
    if (request.path.startsWith("/api/v1/"))
        return alpacaRequest(request, site.alpaca, view);
    if (request.path.startsWith("/management/"))
        return managementRequest(request, site.alpaca, siteName(view));
    if (request.method == "GET") {
        if (std::optional<Answer> page = pageAnswer(request.path, request.known, view))
            return std::move(*page);
        if (std::optional<Answer> setup = setupAnswer(request.path, site.alpaca, siteName(view)))
            return std::move(*setup);
    }
    for (const Route& row : kRoutes) {
        if (request.path != row.path)
            continue;
        if (request.method != "GET")
            return notAllowed("GET, HEAD");
        return row.handle(request, view, site);
    }
    if (request.path.startsWith("/api/"))
        return textAnswer(400, "There is no such path; Alpaca's devices are under /api/v1/");
    return textAnswer(404, "There is no such page");
}

} // namespace skyhold
