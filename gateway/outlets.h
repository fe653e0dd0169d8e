// SPDX-License-Identifier: GPL-3.0-or-later
// What the gateway sends by itself: messages to an MQTT broker, events to hooks.
#pragma once

#include "gateway/hook_events.h"
#include "gateway/hooks.h"
#include "gateway/mqtt_publisher.h"

#include <QCommandLineParser>

namespace skyhold {

struct OutletOptions {
    std::optional<MqttOptions> mqtt;
    QList<QStringList> hooks; // each a program and its arguments
    double hookSeconds = 30;  // that a run may take
};

void addOutletOptions(QCommandLineParser& parser);
// The password comes from a file or from the environment, where others do not see it.
bool readOutletOptions(const QCommandLineParser& parser, OutletOptions& options, QString& fault);

class Outlets {
  public:
    Outlets(const OutletOptions& options, const StateBoard& board);
    // The state may have changed. It is looked at twice a second besides.
    void look();

  private:
    void callHooks(const View& view, std::int64_t nowMs);

    const StateBoard& board_;
    std::unique_ptr<MqttPublisher> mqtt_;
    std::vector<std::unique_ptr<HookRunner>> hooks_;
    std::optional<HookState> seen_;
    std::int64_t beganMs_;
    QTimer looks_;
};

} // namespace skyhold
