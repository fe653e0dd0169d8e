// SPDX-License-Identifier: GPL-3.0-or-later
// What the gateway knows of the monitor: the last state document, for how long it counts, and
// whether the monitor answers. The thread of the bus writes it, that of the network reads it.
#pragma once

#include "platform/clock.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include <cstdint>
#include <memory>
#include <mutex>

namespace skyhold {

inline constexpr std::int64_t kSilenceMs = 4000; // a monitor that does not answer for so long hangs

// Never changed once it is published.
struct Snapshot {
    QJsonObject document; // as the monitor sent it; empty: there is none
    QByteArray text;      // the same, compact
    std::int64_t heardMs = 0;
    std::int64_t keepMs = 0; // how long it counts
    QString fault;           // why there is none
};

Snapshot snapshotOf(const QByteArray& text, std::int64_t heardMs);

enum class Word : std::uint8_t { Safe, Unsafe, Unknown };
const char* wordText(Word word); // "SAFE", "UNSAFE", "UNKNOWN"

// The state at a moment.
struct View {
    std::shared_ptr<const Snapshot> snapshot; // never null
    QString fault;                            // why nothing is known; empty while it is
    std::int64_t ageMs = 0;                   // of the document

    bool live() const { return fault.isEmpty(); }
    // The document's own answer, while it counts.
    bool safe() const;
    // Unknown without a document that counts and without a running session.
    Word word() const;
    // The document while it counts, else one that says unsafe, with the reason as its cause.
    QJsonObject document() const;
    QByteArray documentText() const;
};

// For every thread.
class StateBoard {
  public:
    StateBoard();
    void publish(Snapshot snapshot);
    void answered(std::int64_t nowMs);
    View look(std::int64_t nowMs) const;

  private:
    mutable std::mutex mutex_;
    std::shared_ptr<const Snapshot> snapshot_;
    std::int64_t answeredMs_ = 0;
};

} // namespace skyhold
