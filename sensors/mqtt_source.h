// SPDX-License-Identifier: GPL-3.0-or-later
// Values that devices publish at an MQTT broker.
#pragma once

#include "mqtt/connection.h"
#include "sensors/settings.h"
#include "sensors/source_readings.h"

#include <memory>

namespace skyhold {

// An address is a topic, for a message that is one value, or "topic#wind.speed" for a value within
// a message. What the broker kept from earlier (a retained message) is not news: nobody knows how
// old it is.
class MqttSource : public ValueSource {
  public:
    MqttSource(const SourceSettings& settings, SourceReadings& readings);
    void start() override;

  private:
    void take(const MqttMessage& message, std::int64_t atMs);
    void lose(const QString& why);

    SourceSettings settings_;
    SourceReadings& readings_;
    std::unique_ptr<MqttConnection> connection_;
};

} // namespace skyhold
