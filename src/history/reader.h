// SPDX-License-Identifier: GPL-3.0-or-later
// Reads the history, in any program, while the monitor writes it. Times are milliseconds since
// 1970, UTC; a range holds its beginning and not its end. For one thread.
#pragma once

#include "history/kept.h"

#include <QJsonObject>
#include <QString>

#include <functional>
#include <optional>
#include <vector>

namespace skyhold {

// Where the monitor keeps its history: "history.db" in the user's data folder.
QString historyPath();

struct HistoryRange {
    std::int64_t firstMs = 0; // of anything that is kept; 0 when there is nothing
    std::int64_t lastMs = 0;
    std::int64_t cyclesFromMs = 0; // since when single cycles are kept; 0 when there are none
    std::int64_t fileBytes = 0;
};

// A time in which the verdict stayed the same.
struct VerdictPeriod {
    std::int64_t fromMs = 0;
    std::int64_t toMs = 0;
    bool lasts = false;                // to the end of what is known
    QString verdict;                   // "safe", "unsafe", "waiting"
    std::vector<HistoryEvent> changes; // its beginning, and the changes of its causes
};

class HistoryReader {
  public:
    // Opens the database for reading alone.
    explicit HistoryReader(const QString& path = historyPath());
    ~HistoryReader();
    HistoryReader(const HistoryReader&) = delete;
    HistoryReader& operator=(const HistoryReader&) = delete;

    // Why there is nothing to read, or why the last call has read less than there is; empty when
    // all went well.
    QString fault() const { return fault_; }

    HistoryRange range();

    // By time. At most `maxPoints` (0: every one): single cycles where these are kept and few
    // enough, else minutes, hours or days, taken together further where they are still too many.
    std::vector<HistoryPoint> readCycles(std::int64_t sinceMs, std::int64_t untilMs, int maxPoints);

    // By time. `kind` alone, or of all kinds when it is empty.
    std::vector<HistoryEvent> readEvents(std::int64_t sinceMs, std::int64_t untilMs,
                                         const QString& kind = {});

    // The periods that reach into the range, whole, by time. Times without a session are no period.
    std::vector<VerdictPeriod> readPeriods(std::int64_t sinceMs, std::int64_t untilMs);

    // What the monitor said then, in the form of the state document as far as it is kept; empty
    // when nothing is known of that time.
    QJsonObject stateAt(std::int64_t atMs);

    // The finest points there are, by time, until `take` answers false: single cycles, and minutes
    // where these are thinned.
    bool eachPoint(std::int64_t sinceMs, std::int64_t untilMs,
                   const std::function<bool(const HistoryPoint&)>& take);
    // Every cycle of the range, by time, until `take` answers false.
    bool eachCycle(std::int64_t sinceMs, std::int64_t untilMs,
                   const std::function<bool(const KeptCycle&)>& take);
    // The same with the minutes that cycles were thinned to.
    bool eachMinute(std::int64_t sinceMs, std::int64_t untilMs,
                    const std::function<bool(const HistoryPoint&)>& take);

  private:
    std::vector<HistoryPoint> readSpans(int tier, std::int64_t sinceMs, std::int64_t untilMs);
    std::optional<HistoryEvent> oneEvent(const QString& condition, const QVariantList& values);
    std::optional<HistoryEvent> lastEvent(const QString& kind, std::int64_t atMs);
    // Of the period that the event belongs to: its causes may have changed since it began.
    std::int64_t verdictSince(const HistoryEvent& verdict);
    // The last cycle, or what its minute says of it.
    std::optional<KeptCycle> cycleBefore(std::int64_t atMs);
    bool eachSpan(int tier, std::int64_t sinceMs, std::int64_t untilMs,
                  const std::function<bool(const HistoryPoint&)>& take);
    std::int64_t number(const QString& statement);

    QString path_;
    QString connection_;
    QString fault_;
};

} // namespace skyhold
