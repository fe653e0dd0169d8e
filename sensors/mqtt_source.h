// Values that devices publish at an MQTT broker.
#pragma once

#include "sensors/settings.h"
#include "sensors/source_readings.h"

#include <QMutex>
#include <QObject>
#include <QWaitCondition>

#include <memory>
#include <thread>

struct mosquitto;

namespace skyhold {

// An address is a topic, for a message that is one value, or "topic#wind.speed" for a value within
// a message. What the broker kept from earlier (a retained message) is not news: nobody knows how
// old it is.
class MqttSource : public ValueSource {
  public:
    MqttSource(const SourceSettings& settings, SourceReadings& readings);
    ~MqttSource() override;
    void start() override;

    // In the thread of the connection.
    void connected(int code);
    void disconnected();
    void arrived(const QString& topic, const QByteArray& payload);

  private:
    void serve();
    bool prepare();
    void take(const QString& topic, const QByteArray& payload, std::int64_t atMs);
    void lose(const QString& why);
    void postTrouble(const QString& why);

    SourceSettings settings_;
    SourceReadings& readings_;
    QStringList topics_;
    std::shared_ptr<QObject> here_; // where the thread hands over what came
    std::thread thread_;
    QMutex mutex_;
    QWaitCondition wake_;
    bool ending_ = false;
    mosquitto* client_ = nullptr;
};

} // namespace skyhold
