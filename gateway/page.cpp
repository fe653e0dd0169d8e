// SPDX-License-Identifier: GPL-3.0-or-later
#include "gateway/page.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QFile>
#include <QJsonArray>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

struct PageFile {
    const char* path;
    const char* type;
};

constexpr const char* kScript = "text/javascript; charset=utf-8";
constexpr const char* kStyle = "text/css; charset=utf-8";

// A client names none of these files: it is answered from this list or not at all.
constexpr PageFile kFiles[] = {
    {"/page.css", kStyle},          {"/readings.css", kStyle},
    {"/history.css", kStyle},       {"/look.js", kScript},
    {"/page.js", kScript},          {"/readings.js", kScript},
    {"/history.js", kScript},       {"/charts.js", kScript},
    {"/dygraph.min.js", kScript},   {"/icon.svg", "image/svg+xml"},
    {"/icon-192.png", "image/png"}, {"/manifest.webmanifest", "application/manifest+json"},
};

QByteArray content(const char* path) {
    QFile file(u":/page"_s + QLatin1String(path));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The readings in their order on the page, as readings.js has them.
struct Tile {
    const char* key;
    const char16_t* name;
    int digits;
};
constexpr Tile kTiles[] = {
    {"cloud", u"Cloud", 1},
    {"rain", u"Rain", 0},
    {"wind", u"Wind", 1},
    {"gust", u"Gust", 1},
    {"humidity", u"Humidity", 0},
    {"dew_spread", u"Dew spread", 1},
    {"temperature", u"Temperature", 1},
    {"brightness", u"Brightness", 0},
    {"wind_direction", u"Direction", 1},
};

QString clock(const QJsonValue& time) {
    const QDateTime at = QDateTime::fromString(time.toString(), Qt::ISODate);
    return at.isValid() ? at.toLocalTime().toString(u"HH:mm:ss") : QString();
}

// As page.js names them.
QString stateName(const View& view, const QJsonObject& document) {
    if (!view.live())
        return u"unknown"_s;
    if (document[u"session"_s] == u"starting"_s)
        return u"starting"_s;
    if (view.word() == Word::Unknown)
        return u"stopped"_s;
    if (view.safe())
        return u"safe"_s;
    for (const auto& cause : document[u"causes"_s].toArray()) {
        if (cause[u"kind"_s] == u"source"_s)
            return u"failed"_s;
    }
    return document[u"verdict"_s] == u"waiting"_s ? u"waiting"_s : u"unsafe"_s;
}

QString causesHtml(const QJsonObject& document) {
    QString html;
    for (const auto& cause : document[u"causes"_s].toArray())
        html += u"<li><p>"_s + cause[u"text"_s].toString().toHtmlEscaped() + u"</p></li>"_s;
    const QString nearest = document[u"nearest"_s][u"text"_s].toString();
    return html.isEmpty() && !nearest.isEmpty()
               ? u"<li><p>"_s + nearest.toHtmlEscaped() + u"</p></li>"_s
               : html;
}

QString sourcesHtml(const QJsonObject& document, bool live) {
    QString html;
    for (const auto& [key, name] :
         {std::pair(u"sensor"_s, u"Sensor"_s), {u"station"_s, u"Station"_s}}) {
        const QJsonObject source = document[u"sources"_s][key].toObject();
        const QString state = source[u"state"_s].toString();
        QString said = live ? state.toHtmlEscaped() : u"–"_s;
        if (live && source[u"age_s"_s].isDouble())
            said += u", %1 s"_s.arg(source[u"age_s"_s].toInteger());
        const QString mark = !live || state == u"absent" ? u"off"_s
                             : state == u"ok"            ? QString()
                                                         : u"failed"_s;
        html +=
            u"<li><i class=\"dot %1\"></i><span>%2 </span><b>%3</b></li>"_s.arg(mark, name, said);
    }
    return html;
}

QString readingHtml(const Tile& tile, const QJsonObject& reading, bool live) {
    const bool known = live && reading[u"value"_s].isDouble();
    const QString value =
        known ? QString::number(reading[u"value"_s].toDouble(), 'f', tile.digits) : u"–"_s;
    const QString label = reading[u"label"_s].toString(reading[u"compass"_s].toString());
    const bool culprit = reading[u"unsafe"_s] == true || reading[u"beyond"_s] == true;
    QString kind = !known ? u"old"_s : culprit ? u"culprit"_s : QString();
    if (!reading.contains(u"armed"_s))
        kind += u" plain"_s; // it has no levels
    return u"<div class=\"reading %1\"><h2>%2</h2><span class=\"level\">%3</span>"
           "<span class=\"value\">%4</span><span class=\"unit\">%5</span></div>"_s.arg(
               kind, QString::fromUtf16(tile.name), (known ? label : QString()).toHtmlEscaped(),
               value, reading[u"unit"_s].toString().toHtmlEscaped());
}

QString readingsHtml(const QJsonObject& document, bool live) {
    const QJsonObject readings = document[u"readings"_s].toObject();
    QString html;
    for (const Tile& tile : kTiles)
        html += readingHtml(tile, readings[QLatin1String(tile.key)].toObject(), live);
    return html;
}

QString firstLine(const QString& state, const QJsonObject& document) {
    if (state == u"unknown")
        return u"Monitor lost"_s;
    if (state == u"stopped")
        return u"Not monitoring"_s;
    if (state == u"starting")
        return u"Starting"_s;
    if (state == u"waiting") {
        const qint64 left = document[u"wait_s"_s].toInteger();
        return u"Safe in %1:%2"_s.arg(left / 60).arg(left % 60, 2, 10, QChar(u'0'));
    }
    return u"since "_s + clock(document[u"since"_s]);
}

QByteArray livePage(const View& view) {
    const QJsonObject document = view.document();
    const QString state = stateName(view, document);
    const bool live = view.live() && document[u"session"_s] == u"running"_s;
    const QString site = document[u"monitor"_s][u"site"_s].toString(u"Kiv_Skyhold"_s);
    const QString known = clock(document[u"time"_s]);
    const std::pair<const char*, QString> fields[] = {
        {"{{state}}", state},
        {"{{word}}", QLatin1String(wordText(view.word()))},
        {"{{site}}", site.toHtmlEscaped()},
        {"{{time}}", known},
        {"{{since}}", firstLine(state, document)},
        {"{{more}}", view.live() ? u"as of "_s + known : u"Treat as unsafe."_s},
        {"{{causes}}", causesHtml(document)},
        {"{{sources}}", sourcesHtml(document, live)},
        {"{{readings}}", readingsHtml(document, live)},
    };
    // From left to right, so that a value never becomes a field itself.
    const QByteArray form = content("/index.html");
    QByteArray page;
    qsizetype from = 0;
    for (qsizetype at = form.indexOf("{{"); at >= 0; at = form.indexOf("{{", from)) {
        page += form.sliced(from, at - from);
        const qsizetype end = form.indexOf("}}", at) + 2;
        for (const auto& [name, value] : fields) {
            if (form.sliced(at, end - at) == name)
                page += value.toUtf8();
        }
        from = end;
    }
    return page + form.sliced(from);
}

} // namespace

std::optional<Answer> pageAnswer(const QByteArray& path, const QByteArray& known,
                                 const View& view) {
    if (path == "/")
        return Answer{.type = "text/html; charset=utf-8", .body = livePage(view)};
    for (const PageFile& file : kFiles) {
        if (path != file.path)
            continue;
        Answer answer{.type = file.type, .body = content(file.path)};
        answer.tag =
            '"' + QCryptographicHash::hash(answer.body, QCryptographicHash::Sha1).toHex() + '"';
        if (known.contains(answer.tag)) {
            answer.status = 304;
            answer.body.clear();
        }
        return answer;
    }
    return std::nullopt;
}

} // namespace skyhold
