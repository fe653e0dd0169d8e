#include "gateway/routes.h"

#include "gateway/metrics.h"
#include "gateway/page.h"
#include "model/roof_status.h"

#include <QDateTime>

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

struct Route {
    const char* path;
    Handling (*handle)(const Request&, const View&, Site&);
};

constexpr Route kRoutes[] = {
    {"/healthz", healthz},     {"/api/status", status}, {"/api/events", events},
    {"/api/history", history}, {"/metrics", metrics},   {"/roof_status.json", roofStatus},
};

Answer notAllowed(const char* methods) {
    Answer answer = textAnswer(405, QByteArray("This takes ") + methods);
    answer.allow = methods;
    return answer;
}

QByteArray siteName(const View& view) {
    const QString name = view.document()[u"monitor"_s][u"site"_s].toString();
    return jsonText(name.isEmpty() ? u"Kiv_Skyhold"_s : name);
}

} // namespace

Handling route(const Request& request, Site& site) {
    if (!site.hosts.allows(request.host))
        return textAnswer(421, "This is not a name of this gateway (docs/network.md)");
    if (request.method != "GET" && !site.hosts.allowsOrigin(request.origin, request.host))
        return textAnswer(403, "A page from elsewhere cannot write here");
    const View view = site.board.look(site.nowMs());
    if (request.path.startsWith("/api/v1/")) {
        if (request.method == "GET" || request.method == "PUT")
            return alpacaRequest(request, site.alpaca, view);
        return notAllowed("GET, HEAD, PUT");
    }
    if (request.path.startsWith("/management/"))
        return managementRequest(request, site.alpaca, siteName(view));
    if (request.method == "GET") {
        if (std::optional<Answer> page = pageAnswer(request.path, view))
            return std::move(*page);
    }
    for (const Route& row : kRoutes) {
        if (request.path != row.path)
            continue;
        if (request.method != "GET") {
            return notAllowed("GET, HEAD");
        }
        return row.handle(request, view, site);
    }
    return textAnswer(404, "There is no such page");
}

} // namespace skyhold
