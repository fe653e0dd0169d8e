// SPDX-License-Identifier: GPL-3.0-or-later
// What the network asks of the gateway.
#include "target.h"

#include "gateway/state_of.h"

namespace skyhold::fuzz {

namespace {

constexpr const char* kMethods[] = {"GET", "PUT", "POST", "DELETE"};

struct FuzzedSite {
    explicit FuzzedSite(bool safe)
        : heard(documentThat(safe)) {
        heard.site.alpaca.elevation = 300;
        heard.site.alpaca.moveRoof = [this, safe](bool open, const auto& done) {
            require(heard.site.alpaca.allowSwitch && (safe || !open),
                    "the roof is opened while it is safe and clients may");
            done(QString());
        };
    }

    static QJsonObject documentThat(bool safe) {
        QJsonObject document = safeDocument();
        if (!safe) {
            document[QStringLiteral("safe")] = false;
            document[QStringLiteral("verdict")] = QStringLiteral("unsafe");
        }
        return document;
    }

    HeardSite heard;
};

bool isKnown(int status) {
    constexpr int kStatuses[] = {200, 400, 403, 404, 405, 421, 503};
    return std::find(std::begin(kStatuses), std::end(kStatuses), status) != std::end(kStatuses);
}

// "METHOD-AND-FLAGS TARGET\0HOST\0BODY"
void gatewayRequests(QByteArrayView bytes) {
    static FuzzedSite safeSite(true);
    static FuzzedSite unsafeSite(false);
    Input input(bytes);
    const unsigned flags = input.byte();
    const bool safe = (flags & 4U) != 0;
    HeardSite& heard = (safe ? safeSite : unsafeSite).heard;
    heard.site.alpaca.allowSwitch = (flags & 8U) != 0;
    const QByteArray target = input.upToZero().toByteArray();
    const QByteArray host = input.upToZero().toByteArray();
    const qsizetype mark = target.indexOf('?');
    Request request{.method = kMethods[flags & 3U],
                    .path = target.first(mark < 0 ? target.size() : mark),
                    .body = input.rest().toByteArray(),
                    .host = host.isEmpty() ? QByteArray("localhost") : host};
    if (mark >= 0)
        request.query = parseForm(target.sliced(mark + 1)).value_or(Parameters());
    if (request.path == "/api/history") // a thread of its own answers
        return;
    const Handling handling = heard.ask(request);
    Answer answer;
    if (const auto* later = std::get_if<LaterAnswer>(&handling))
        (*later)([&answer](Answer came) { answer = std::move(came); });
    else if (const auto* now = std::get_if<Answer>(&handling))
        answer = *now;
    require(isKnown(answer.status), "an answer has a status of ours");
    if (QByteArrayView(answer.type) == "application/json" && answer.status == 200 &&
        !answer.body.isEmpty())
        require(!QJsonDocument::fromJson(answer.body).isNull(), "what is called JSON is JSON");
    if (!safe && request.path.endsWith("/issafe"))
        require(!answer.body.contains("\"Value\":true"), "what is unsafe is never safe");
    if (request.host.endsWith(".example"))
        require(answer.status == 421, "a foreign name is refused");
}

} // namespace

const Target kGatewayRequests{"gateway_requests", gatewayRequests};

} // namespace skyhold::fuzz
