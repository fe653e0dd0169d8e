// SPDX-License-Identifier: GPL-3.0-or-later
// Desktop notifications: when there is something to say, and what.
#pragma once

#include "core/monitoring_core.h"

#include <QTimer>

#include <array>

namespace skyhold {

enum class NoticeUrgency : std::uint8_t { Low, Normal, Critical };

struct Notice {
    QString title;
    QString text;
    NoticeUrgency urgency = NoticeUrgency::Normal;
    bool silence = false; // an alarm sounds: it can be silenced
};

// What a notice is about.
struct NoticeState {
    Verdict verdict = Verdict::None; // None while no session runs
    SourceState station = SourceState::Ok;
    SourceState sensor = SourceState::Ok;
    QString alarm; // the id of the one that owns the sound; empty: none
    bool sounding = false;
    bool operator==(const NoticeState&) const = default;
};

NoticeState noticeState(const MonitoringCore& core);

// What is to be said of a change; nothing when the user wants to hear of none of it.
std::optional<Notice> noticeOf(const NoticeState& before, const NoticeState& now,
                               const MonitoringCore& core);

// Follows the core and says what changes, once events are served again, so that a cycle never
// waits for it and all of its changes are one notice. `core` outlives it.
class ChangeNotices {
  public:
    explicit ChangeNotices(MonitoringCore& core);
    // Takes back what still stands.
    ~ChangeNotices();
    ChangeNotices(const ChangeNotices&) = delete;
    ChangeNotices& operator=(const ChangeNotices&) = delete;

    std::function<void(const Notice&)> show; // in the place of the last one
    std::function<void()> close;             // what was shown last, if it still stands
    std::function<bool()> seen;              // the user has the panel before them

    // Says what has changed since it last looked.
    void look();

  private:
    MonitoringCore& core_;
    NoticeState last_;
    QTimer soon_;
    std::array<QPropertyNotifier, 4> following_;
};

} // namespace skyhold
