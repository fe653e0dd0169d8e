// SPDX-License-Identifier: GPL-3.0-or-later
// Reads the monitor's history in a thread of its own, so that nothing waits for a disk.
#pragma once

#include "gateway/request.h"

#include <QString>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace skyhold {

struct HistoryQuestion {
    std::int64_t sinceMs = 0;
    std::int64_t untilMs = 0;
    int points = 0;
    bool operator==(const HistoryQuestion&) const = default;
};

// Of "since", "until" (ISO 8601, or milliseconds since 1970) and "points"; nothing, with the
// reason, when they cannot be read. The last day by default.
std::optional<HistoryQuestion> historyQuestion(const Parameters& query, std::int64_t nowUtcMs,
                                               QByteArray& fault);

class HistoryWorker {
  public:
    explicit HistoryWorker(QString path);
    ~HistoryWorker();
    HistoryWorker(const HistoryWorker&) = delete;
    HistoryWorker& operator=(const HistoryWorker&) = delete;

    // For every thread; answered in the worker's, or at once when too many wait.
    void ask(const HistoryQuestion& question, Reply reply);

  private:
    struct Job {
        HistoryQuestion question;
        Reply reply;
    };
    void work();

    QString path_;
    std::mutex mutex_;
    std::condition_variable woken_;
    std::deque<Job> jobs_;
    bool ending_ = false;
    std::thread thread_; // the last, so that all is there when it begins
};

} // namespace skyhold
