// SPDX-License-Identifier: GPL-3.0-or-later
#include "gateway/outlets.h"

namespace skyhold {

namespace {

constexpr int kLookMs = 500;
constexpr std::int64_t kFirstWordMs = 5000; // that the monitor has until it counts as silent

} // namespace

Outlets::Outlets(const OutletOptions& options, const StateBoard& board)
    : board_(board)
    , beganMs_(bootMs()) {
    if (options.mqtt)
        mqtt_ = std::make_unique<MqttPublisher>(*options.mqtt, board);
    for (const QStringList& command : options.hooks)
        hooks_.push_back(
            std::make_unique<HookRunner>(command, static_cast<int>(options.hookSeconds * 1000)));
    QObject::connect(&looks_, &QTimer::timeout, &looks_, [this] { look(); });
    if (mqtt_ || !hooks_.empty())
        looks_.start(kLookMs);
}

void Outlets::look() {
    if (mqtt_)
        mqtt_->look();
    if (hooks_.empty())
        return;
    const std::int64_t now = bootMs();
    callHooks(board_.look(now), now);
}

void Outlets::callHooks(const View& view, std::int64_t nowMs) {
    if (!seen_ && !view.live() && nowMs - beganMs_ < kFirstWordMs)
        return;
    const HookState state = hookState(view);
    for (const QString& event : eventsBetween(seen_ ? &*seen_ : nullptr, state)) {
        for (const auto& hook : hooks_)
            hook->call(
                {.event = event, .reason = reasonText(view), .document = view.documentText()});
    }
    seen_ = state;
}

} // namespace skyhold
