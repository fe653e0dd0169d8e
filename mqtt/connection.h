// SPDX-License-Identifier: GPL-3.0-or-later
// A connection to an MQTT broker that comes back by itself.
#pragma once

#include "mqtt/outbox.h"

#include <QDeadlineTimer>
#include <QMutex>
#include <QObject>
#include <QStringList>
#include <QTimer>
#include <QWaitCondition>

#include <atomic>
#include <functional>
#include <memory>
#include <thread>

struct mosquitto;

namespace skyhold {

// A thread of its own looks up names, connects and waits. Everything that is called or set here
// belongs to the thread that made the connection, whose event loop must run: while it hangs for
// longer than kHungMs the connection is dropped, so that the will speaks for a program that is
// alive and does nothing.
class MqttConnection {
  public:
    static constexpr std::int64_t kHungMs = 10'000;

    explicit MqttConnection(MqttBroker broker);
    // Without a goodbye: the broker publishes the will.
    ~MqttConnection();

    // To be set before the start.
    QStringList Topics; // to subscribe to, at most once each (QoS of SubscribeQos)
    int SubscribeQos = 1;
    std::function<void()> Connected;
    // The broker is gone, or was not reached at another try; `why` is a part of a sentence.
    std::function<void(const QString& why)> Lost;
    // With the moment of its arrival by bootMs.
    std::function<void(const MqttMessage& message, std::int64_t atMs)> Arrived;
    // The broker does not want a message, as of a topic that this user may not write.
    std::function<void(const QString& why)> Refused;

    void start();
    bool connected() const { return connectedTo_ != 0; }
    const MqttBroker& broker() const { return broker_; }

    // With QoS 1. Nothing without a connection: what holds then is published when it is back.
    void publish(const MqttMessage& message);
    // Waits until all is acknowledged; false when that takes longer, or without a connection.
    bool flush(int patienceMs);

  private:
    struct Session; // one try

    void serve();
    QString attempt(bool& lasted);
    bool prepare(mosquitto* client, QString& fault) const;
    void post(std::function<void()> work);
    bool ending();
    bool pause(double seconds);
    void send();

    MqttBroker broker_;
    std::unique_ptr<QObject> here_; // where the thread hands over what came
    QTimer beats_;
    Outbox outbox_;
    std::uint64_t connectedTo_ = 0; // the try that is connected; 0: none

    std::thread thread_;
    std::atomic<std::int64_t> beatMs_;
    bool version5_; // changes only while there is no client
    QMutex mutex_;  // guards what follows
    QWaitCondition wake_;
    bool ending_ = false;
    mosquitto* client_ = nullptr;
    std::uint64_t try_ = 0;
};

} // namespace skyhold
