// SPDX-License-Identifier: GPL-3.0-or-later
// Writes the history on a thread of its own: whatever the disk does, adding never waits.
#pragma once

#include "history/store.h"

#include <memory>

namespace skyhold {

// How the recording of the history is doing.
struct HistoryState {
    bool on = false;               // begin() was called
    QString fault;                 // why nothing can be written at present; empty: all is well
    std::int64_t lostReadings = 0; // since begin()
    std::int64_t lostEvents = 0;
    std::int64_t fileBytes = 0; // after the last write
    QString setAside;           // where a torn database was put; empty: there was none
};

class HistoryWriter {
  public:
    // Bound of what waits for the disk: half a day of cycles of 10 s.
    static constexpr std::size_t kMostWaiting = 4'096;

    HistoryWriter();
    // Ends as end() does.
    ~HistoryWriter();
    HistoryWriter(const HistoryWriter&) = delete;
    HistoryWriter& operator=(const HistoryWriter&) = delete;

    // From now on what is added goes to the database at `path`; before, it goes nowhere.
    void begin(const QString& path, const HistoryKeep& keep);
    void keep(const HistoryKeep& keep);

    // Written within a moment, in the order in which it comes; events before cycles that come with
    // them. When the disk is too slow, the oldest cycles are lost first, then the oldest events;
    // how many is in state(), and in an event as soon as the disk can be written again.
    void add(const KeptCycle& cycle);
    void add(HistoryEvent event);

    HistoryState state() const;

    // Writes what waits, for at most `patienceMs`; false when some of it is lost. A disk that hangs
    // never keeps the program from ending.
    bool end(int patienceMs = 3'000);

  private:
    struct Shared;
    std::shared_ptr<Shared> shared_;
};

} // namespace skyhold
