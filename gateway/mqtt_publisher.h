// SPDX-License-Identifier: GPL-3.0-or-later
// Publishes the state at an MQTT broker.
#pragma once

#include "gateway/mqtt_messages.h"
#include "mqtt/connection.h"

namespace skyhold {

struct MqttOptions {
    MqttBroker broker;
    QString prefix;                                      // "skyhold/SITE"
    QString discovery = QStringLiteral("homeassistant"); // prefix; empty: no discovery messages
};

// A will can set one topic, and three must not outlive this program: "safe" and "state", which say
// that it is safe, and "availability". So there are three connections, each with its will. They are
// always ended without a goodbye, so that the end of the program takes one way, whatever ends it.
// What says safe expires at the broker besides, for one that dies together with this program and
// starts alone.
class MqttPublisher {
  public:
    MqttPublisher(const MqttOptions& options, const StateBoard& board);
    // Says that the gateway has stopped, as far as the broker still listens.
    ~MqttPublisher();

    // The state may have changed.
    void look();

  private:
    void publish(const View& view, std::int64_t nowMs);
    void publishAll();
    void log(const QString& text);

    MqttOptions options_;
    const StateBoard& board_;
    MqttFeed feed_;
    MqttConnection main_; // its will is on "safe"; publishes all but the availability
    MqttConnection state_;
    MqttConnection availability_;
    QString logged_;
    bool ending_ = false;
};

} // namespace skyhold
