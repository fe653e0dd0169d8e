// SPDX-License-Identifier: GPL-3.0-or-later
#include "gateway/history_worker.h"

#include "history/json.h"
#include "history/reader.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kUsualPoints = 480;
constexpr int kMostPoints = 2000;
constexpr std::size_t kMostWaiting = 16;
constexpr std::int64_t kDayMs = 86'400'000;
constexpr qsizetype kMostEvents = 500;

std::optional<std::int64_t> timeOf(const QByteArray& text) {
    bool isNumber = false;
    const qint64 number = text.toLongLong(&isNumber);
    if (isNumber)
        return number >= 0 && number <= kEndOfTime ? std::optional(number) : std::nullopt;
    const QDateTime time = QDateTime::fromString(QString::fromLatin1(text), Qt::ISODate);
    return time.isValid() ? std::optional(time.toMSecsSinceEpoch()) : std::nullopt;
}

QByteArray historyJson(const QString& path, const HistoryQuestion& question) {
    HistoryReader reader(path);
    QString fault = reader.fault();
    QJsonObject answer{{u"since"_s, isoTime(question.sinceMs)},
                       {u"until"_s, isoTime(question.untilMs)}};
    QJsonArray points;
    for (const HistoryPoint& point :
         reader.readCycles(question.sinceMs, question.untilMs, question.points))
        points.append(toJson(point));
    if (fault.isEmpty())
        fault = reader.fault();
    answer[u"points"_s] = points;
    QJsonArray periods;
    for (const VerdictPeriod& period : reader.readPeriods(question.sinceMs, question.untilMs))
        periods.append(toJson(period));
    answer[u"periods"_s] = periods;
    QJsonArray events;
    auto found = reader.readEvents(question.sinceMs, question.untilMs);
    if (static_cast<qsizetype>(found.size()) > kMostEvents)
        found.erase(found.begin(), found.end() - kMostEvents); // the latest
    for (const HistoryEvent& event : found)
        events.append(toJson(event));
    answer[u"events"_s] = events;
    answer[u"fault"_s] = fault;
    return QJsonDocument(answer).toJson(QJsonDocument::Compact);
}

} // namespace

std::optional<HistoryQuestion> historyQuestion(const Parameters& query, std::int64_t nowUtcMs,
                                               QByteArray& fault) {
    HistoryQuestion question{
        .sinceMs = nowUtcMs - kDayMs, .untilMs = nowUtcMs, .points = kUsualPoints};
    for (const auto& [name, target] :
         {std::pair("since", &question.sinceMs), std::pair("until", &question.untilMs)}) {
        if (const auto text = parameter(query, name, false)) {
            const std::optional<std::int64_t> time = timeOf(*text);
            if (!time) {
                fault = QByteArray(name) + " takes a time such as 2026-11-23T05:12:40Z";
                return std::nullopt;
            }
            *target = *time;
        }
    }
    if (const auto text = parameter(query, "points", false)) {
        bool sound = false;
        question.points = text->toInt(&sound);
        if (!sound || question.points < 2 || question.points > kMostPoints) {
            fault = "points takes a number from 2 to " + QByteArray::number(kMostPoints);
            return std::nullopt;
        }
    }
    if (question.sinceMs >= question.untilMs) {
        fault = "since must be before until";
        return std::nullopt;
    }
    return question;
}

HistoryWorker::HistoryWorker(QString path)
    : path_(std::move(path))
    , thread_([this] { work(); }) {}

HistoryWorker::~HistoryWorker() {
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
    }
    woken_.notify_all();
    thread_.join();
}

void HistoryWorker::ask(const HistoryQuestion& question, Reply reply) {
    {
        const std::lock_guard lock(mutex_);
        if (jobs_.size() < kMostWaiting) {
            jobs_.push_back({question, std::move(reply)});
            woken_.notify_one();
            return;
        }
    }
    reply(textAnswer(503, "Too many ask for the history"));
}

void HistoryWorker::work() {
    std::unique_lock lock(mutex_);
    while (true) {
        woken_.wait(lock, [this] { return ending_ || !jobs_.empty(); });
        if (ending_)
            return;
        Job job = std::move(jobs_.front());
        jobs_.pop_front();
        lock.unlock();
        const QByteArray json = historyJson(path_, job.question);
        job.reply(jsonAnswer(json));
        lock.lock();
        // Whoever asked the same meanwhile gets the same.
        for (auto same = jobs_.begin(); same != jobs_.end();) {
            if (same->question == job.question) {
                same->reply(jsonAnswer(json));
                same = jobs_.erase(same);
            } else {
                ++same;
            }
        }
    }
}

} // namespace skyhold
