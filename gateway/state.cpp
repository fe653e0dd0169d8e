// SPDX-License-Identifier: GPL-3.0-or-later
#include "gateway/state.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr double kLongestInterval = 600; // seconds; the monitor's longest is a minute
constexpr qsizetype kDocumentLimit = qsizetype{256} * 1024;

QJsonObject unknownDocument(const QString& reason) {
    return {{u"schema"_s, 1},
            {u"session"_s, u"idle"_s},
            {u"safe"_s, false},
            {u"verdict"_s, u"none"_s},
            {u"causes"_s,
             QJsonArray{QJsonObject{
                 {u"kind"_s, u"session"_s}, {u"name"_s, QString()}, {u"text"_s, reason}}}}};
}

} // namespace

Snapshot snapshotOf(const QByteArray& text, std::int64_t heardMs) {
    const QJsonDocument parsed =
        text.size() > kDocumentLimit ? QJsonDocument() : QJsonDocument::fromJson(text);
    if (parsed.object().isEmpty())
        return {
            .document = {}, .text = {}, .fault = u"The monitor's answer is not a state document"_s};
    const double interval = std::clamp(parsed[u"interval_s"].toDouble(), 0.0, kLongestInterval);
    return {.document = parsed.object(),
            .text = parsed.toJson(QJsonDocument::Compact),
            .heardMs = heardMs,
            .keepMs = static_cast<std::int64_t>(interval * 1500) + 2000,
            .fault = {}};
}

const char* wordText(Word word) {
    constexpr const char* kTexts[] = {"SAFE", "UNSAFE", "UNKNOWN"};
    return kTexts[static_cast<std::size_t>(word)];
}

bool View::safe() const {
    // A document that contradicts itself is not believed.
    const QJsonObject& document = snapshot->document;
    return live() && document[u"safe"_s] == true && document[u"verdict"_s] == u"safe"_s &&
           document[u"session"_s] == u"running"_s;
}

Word View::word() const {
    if (!live() || snapshot->document[u"session"_s] != u"running"_s)
        return Word::Unknown;
    return safe() ? Word::Safe : Word::Unsafe;
}

QJsonObject View::document() const {
    return live() ? snapshot->document : unknownDocument(fault);
}

QByteArray View::documentText() const {
    return live() ? snapshot->text
                  : QJsonDocument(unknownDocument(fault)).toJson(QJsonDocument::Compact);
}

StateBoard::StateBoard()
    : snapshot_(std::make_shared<const Snapshot>(
          Snapshot{.document = {}, .text = {}, .fault = u"The monitor has not been heard yet"_s})) {
}

void StateBoard::publish(Snapshot snapshot) {
    auto published = std::make_shared<const Snapshot>(std::move(snapshot));
    const std::lock_guard lock(mutex_);
    snapshot_ = std::move(published);
}

void StateBoard::answered(std::int64_t nowMs) {
    const std::lock_guard lock(mutex_);
    answeredMs_ = nowMs;
}

View StateBoard::look(std::int64_t nowMs) const {
    View view;
    std::int64_t answeredMs = 0;
    {
        const std::lock_guard lock(mutex_);
        view.snapshot = snapshot_;
        answeredMs = answeredMs_;
    }
    view.ageMs = nowMs - view.snapshot->heardMs;
    if (!view.snapshot->fault.isEmpty())
        view.fault = view.snapshot->fault;
    else if (nowMs - answeredMs > kSilenceMs)
        view.fault = u"The monitor does not answer"_s;
    else if (view.ageMs > view.snapshot->keepMs)
        view.fault = u"The monitor's last cycle is %1 s old"_s.arg(view.ageMs / 1000);
    return view;
}

} // namespace skyhold
