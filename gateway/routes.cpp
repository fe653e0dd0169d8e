#include "gateway/routes.h"

namespace skyhold {

namespace {

Handling healthz(const Request&, Site& site) {
    const View view = site.board.look(site.nowMs());
    return view.live() ? textAnswer(200, "ok") : textAnswer(503, view.fault.toUtf8());
}

Handling status(const Request&, Site& site) {
    return jsonAnswer(site.board.look(site.nowMs()).documentText());
}

struct Route {
    const char* path;
    Handling (*handle)(const Request&, Site&);
};

constexpr Route kRoutes[] = {
    {"/healthz", healthz},
    {"/api/status", status},
};

} // namespace

Handling route(const Request& request, Site& site) {
    if (!site.hosts.allows(request.host))
        return textAnswer(421, "This is not a name of this gateway (docs/network.md)");
    for (const Route& row : kRoutes) {
        if (request.path != row.path)
            continue;
        if (request.method != "GET") {
            Answer answer = textAnswer(405, "This can be read only");
            answer.allow = "GET, HEAD";
            return answer;
        }
        return row.handle(request, site);
    }
    return textAnswer(404, "There is no such page");
}

} // namespace skyhold
