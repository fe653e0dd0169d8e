// SPDX-License-Identifier: GPL-3.0-or-later
#include "ctl/verdict.h"

#include "ctl/values.h"

#include <QJsonArray>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

// Why a source cannot be trusted, in a word; empty while it can.
QString faultOf(const QJsonObject& source) {
    const QString state = source[u"state"_s].toString();
    if (state.isEmpty())
        return u"unknown"_s;
    return state == u"ok" ? QString() : state;
}

QStringList sourceFaults(const QJsonObject& document) {
    const QJsonObject sources = document[u"sources"_s].toObject();
    const QJsonObject sensor = sources[u"sensor"_s].toObject();
    QStringList faults;
    if (const QString fault = faultOf(sources[u"station"_s].toObject()); !fault.isEmpty())
        faults += u"Station data: "_s + fault;
    if (const QString fault = faultOf(sensor); !fault.isEmpty())
        faults += u"Kiv_Nubilo: "_s + fault;
    else if (sensor[u"ready"_s] != true)
        faults += u"Kiv_Nubilo has no data yet"_s;
    return faults;
}

} // namespace

StatusVerdict verdictOf(const QJsonObject& document) {
    const QString verdict = document[u"verdict"_s].toString();
    const bool running = document[u"session"_s] == u"running"_s;
    if (!running || !sourceFaults(document).isEmpty())
        return StatusVerdict::Unknown;
    if (document[u"safe"_s] == true && verdict == u"safe")
        return StatusVerdict::Safe;
    const bool known = verdict == u"safe" || verdict == u"unsafe" || verdict == u"waiting";
    return known && document[u"safe"_s] == false ? StatusVerdict::Unsafe : StatusVerdict::Unknown;
}

QStringList causesOf(const QJsonObject& document) {
    QStringList texts;
    for (const auto& cause : document[u"causes"_s].toArray())
        texts += plainLine(cause[u"text"_s].toString()).trimmed();
    texts.removeAll(QString());
    if (!texts.isEmpty() || verdictOf(document) == StatusVerdict::Safe)
        return texts;
    if (document[u"session"_s] != u"running"_s)
        return {u"No monitoring session is running"_s};
    texts = sourceFaults(document);
    if (texts.isEmpty())
        texts += document[u"verdict"_s] == u"safe"_s ? u"There have been no readings for a while"_s
                                                     : u"Kiv_Skyhold does not say why"_s;
    return texts;
}

int exitStatus(StatusVerdict verdict) {
    return static_cast<int>(verdict);
}

} // namespace skyhold
