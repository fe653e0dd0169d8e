// SPDX-License-Identifier: GPL-3.0-or-later
// The database of the history, as its one writer sees it. For one thread; it may wait for the disk.
#pragma once

#include "history/kept.h"

#include <QSqlDatabase>
#include <QString>

#include <memory>
#include <optional>
#include <vector>

namespace skyhold {

// What is kept for how long.
struct HistoryKeep {
    int cycleDays = 30;    // single cycles; from then on minutes
    int eventYears = 10;   // events, minutes, hours and days
    int megabytes = 1'024; // of the file; the oldest minutes give way
    bool operator==(const HistoryKeep&) const = default;
};

struct HistoryBatch {
    std::vector<HistoryEvent> events;
    std::vector<KeptCycle> cycles; // by time
};

class HistoryStore {
  public:
    explicit HistoryStore(const QString& path);
    ~HistoryStore();
    HistoryStore(const HistoryStore&) = delete;
    HistoryStore& operator=(const HistoryStore&) = delete;

    // Opens the database and makes a missing one, folder and all. One that is torn or is none is
    // renamed to NAME.broken-TIME and begun anew, with an event that says so. A session of which
    // no end is written (the program was killed) ends at its last cycle. False when it cannot be
    // opened; fault() says why.
    bool open();
    bool isOpen() const;
    void close();

    // Writes all of it or nothing; with the operating system when it returns. False when it could
    // not be written: fault() says why, and the next call opens the database again.
    bool write(const HistoryBatch& batch);

    // Takes cycles together, thins what is old and bounds the file, as of the time `nowMs`. In
    // steps of at most a moment each: true when there is more to do.
    bool tidy(std::int64_t nowMs, const HistoryKeep& keep);

    QString fault() const { return fault_; }
    // Where a torn database was put by the last open(); empty when there was none.
    QString setAside() const { return setAside_; }
    std::int64_t fileBytes() const;

  private:
    bool openFile();
    bool makeTables();
    bool isWhole();
    bool setTornAside();
    bool endLostSession();
    bool putCycles(const std::vector<KeptCycle>& cycles);
    bool putEvents(const std::vector<HistoryEvent>& events);
    bool takeTogether(std::size_t tier, std::int64_t nowMs);
    bool deleteOlder(const QString& table, std::int64_t beforeMs, std::int64_t stepMs, bool& more);
    bool boundFile(const HistoryKeep& keep, bool& more);
    bool inTransaction(const std::function<bool()>& work);
    bool run(const QString& statement);
    std::optional<std::int64_t> number(const QString& statement);
    bool failed(const QSqlQuery& query);

    QString path_;
    QString connection_;
    QString fault_;
    QString setAside_;
    bool torn_ = false;                     // the last fault was of the database itself
    std::array<std::int64_t, 3> takenTo_{}; // where the next span of each tier begins
};

} // namespace skyhold
