// SPDX-License-Identifier: GPL-3.0-or-later
// What is on its way to the broker. Bounded: a message that still waits gives way to a newer one of
// its topic, so that a slow broker gets the latest and never the history.
#pragma once

#include "mqtt/broker.h"

#include <deque>

namespace skyhold {

class Outbox {
  public:
    static constexpr std::size_t kMostWaiting = 200; // topics; then the oldest goes
    static constexpr int kMostUnacknowledged = 20;

    void add(MqttMessage message);
    // The next to send, which counts as sent; nothing while too many are unacknowledged.
    std::optional<MqttMessage> next();
    void acknowledge();
    // The connection is gone: what was meant for it is not sent on another one.
    void clear();

    bool empty() const { return waiting_.empty() && unacknowledged_ == 0; }
    std::size_t waiting() const { return waiting_.size(); }

  private:
    std::deque<MqttMessage> waiting_;
    int unacknowledged_ = 0;
};

} // namespace skyhold
