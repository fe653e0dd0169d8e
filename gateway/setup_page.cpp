// SPDX-License-Identifier: GPL-3.0-or-later
#include "gateway/setup_page.h"

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

QString settingOf(const AlpacaDevice& device, const AlpacaServer& server) {
    const QByteArray type = device.type;
    if (type == "Switch")
        return server.allowSwitch
                   ? u"Clients may move the roof: close it always, open it while it is safe."_s
                   : u"Clients cannot move the roof."_s;
    if (type == "ObservingConditions")
        return server.elevation
                   ? u"Pressure is that at the site, %1 m above the sea."_s.arg(*server.elevation)
                   : u"The elevation of the site is not set, so that there is no pressure."_s;
    return u"The verdict is answered whether a client has connected or not."_s;
}

// `root` leads from the page to the live page: a proxy's own prefix is not known here.
Answer htmlAnswer(const QString& root, const QString& title, const QString& content) {
    const QString page =
        u"<!doctype html><html lang=\"en\"><head><meta charset=\"utf-8\">"
        "<meta name=\"viewport\" content=\"width=device-width\">"
        "<title>%2</title><link rel=\"stylesheet\" href=\"%1page.css\"></head>"
        "<body class=\"setup\"><h1>%2</h1>%3<p>This is set in Kiv_Skyhold's "
        "window, on the page Network, or by the gateway's options.</p>"
        "<p><a href=\"%1setup\">All devices</a> · <a href=\"%1.\">Live page</a></p>"
        "</body></html>"_s.arg(root, title, content);
    return {.type = "text/html; charset=utf-8", .body = page.toUtf8()};
}

QByteArray pathOf(const AlpacaDevice& device) {
    return "setup/v1/" + QByteArray(device.type).toLower() + "/0/setup";
}

} // namespace

std::optional<Answer> setupAnswer(const QByteArray& path, const AlpacaServer& server,
                                  const QString& site) {
    QString list;
    for (const AlpacaDevice& device : alpacaDevices()) {
        const QString name = QString::fromUtf8(device.name);
        if (path == '/' + pathOf(device))
            return htmlAnswer(u"../../../../"_s, name,
                              u"<p>%1.</p><p>%2</p><p>Unique ID: %3</p>"_s.arg(
                                  QString::fromUtf8(device.description), settingOf(device, server),
                                  QLatin1String(uniqueId(device))));
        list += u"<li><a href=\"%1\">%2</a>: %3</li>"_s.arg(QString::fromUtf8(pathOf(device)), name,
                                                            QString::fromUtf8(device.description));
    }
    if (path == "/setup")
        return htmlAnswer(u""_s, u"Kiv_Skyhold"_s,
                          u"<p>Site: %1</p><ul>%2</ul>"_s.arg(site.toHtmlEscaped(), list));
    if (path.startsWith("/setup/"))
        return textAnswer(403, "There is no such device; /setup lists them");
    return std::nullopt;
}

} // namespace skyhold
