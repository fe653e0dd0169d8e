// SPDX-License-Identifier: GPL-3.0-or-later
#include "mqtt/outbox.h"

#include <algorithm>

namespace skyhold {

void Outbox::add(MqttMessage message) {
    const auto same = std::find_if(waiting_.begin(), waiting_.end(), [&](const MqttMessage& other) {
        return other.topic == message.topic;
    });
    if (same != waiting_.end()) {
        *same = std::move(message);
        return;
    }
    if (waiting_.size() == kMostWaiting)
        waiting_.pop_front();
    waiting_.push_back(std::move(message));
}

std::optional<MqttMessage> Outbox::next() {
    if (waiting_.empty() || unacknowledged_ >= kMostUnacknowledged)
        return std::nullopt;
    std::optional<MqttMessage> message(std::move(waiting_.front()));
    waiting_.pop_front();
    ++unacknowledged_;
    return message;
}

void Outbox::acknowledge() {
    unacknowledged_ = std::max(unacknowledged_ - 1, 0);
}

void Outbox::clear() {
    waiting_.clear();
    unacknowledged_ = 0;
}

} // namespace skyhold
