#include "gateway/mqtt_publisher.h"

#include "gateway/gateway_log.h"

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kLastWordsMs = 1000; // shorter than the patience of whoever ends it

MqttBroker withWill(MqttBroker broker, const QString& idEnd, const QString& topic,
                    const QByteArray& payload) {
    broker.clientId += idEnd;
    broker.mqtt5 = true;
    broker.will = MqttMessage{.topic = topic, .payload = payload, .retain = true};
    return broker;
}

} // namespace

MqttPublisher::MqttPublisher(const MqttOptions& options, const StateBoard& board)
    : options_(options)
    , board_(board)
    , feed_(options.prefix, options.discovery)
    , state_(withWill(options.broker, {}, options.prefix + u"/safe"_s, "OFF"), bootMs)
    , presence_(withWill(options.broker, u"-availability"_s, options.prefix + u"/availability"_s,
                         "offline"),
                bootMs) {
    if (!options_.discovery.isEmpty())
        state_.Topics = {options_.discovery + u"/status"_s};
    state_.Connected = [this] {
        log(u"connected to "_s + state_.broker().address());
        feed_.forget();
        look();
    };
    state_.Lost = [this](const QString& why) {
        log(u"no broker at %1: %2"_s.arg(state_.broker().address(), why));
    };
    state_.Refused = [this](const QString& why) {
        log(u"the broker refuses what is published: "_s + why);
    };
    state_.Arrived = [this](const MqttMessage& message, std::int64_t) {
        if (message.payload == "online" && !message.retain) {
            feed_.announce();
            look();
        }
    };
    presence_.Connected = [this] {
        presence_.publish(
            {.topic = options_.prefix + u"/availability"_s, .payload = "online", .retain = true});
    };
    state_.start();
    presence_.start();
}

MqttPublisher::~MqttPublisher() {
    ending_ = true;
    feed_.forget();
    View last;
    last.snapshot = std::make_shared<const Snapshot>();
    last.fault = u"The gateway has stopped"_s;
    publish(last, bootMs());
    if (state_.connected() && !state_.flush(kLastWordsMs))
        log(u"the broker did not take the last message"_s);
}

void MqttPublisher::look() {
    if (ending_)
        return;
    const std::int64_t now = bootMs();
    publish(board_.look(now), now);
}

void MqttPublisher::publish(const View& view, std::int64_t nowMs) {
    if (!state_.connected())
        return;
    for (const MqttMessage& message : feed_.due(view, nowMs))
        state_.publish(message);
}

void MqttPublisher::log(const QString& text) {
    if (text != logged_)
        qCInfo(gatewayLog).noquote() << "MQTT:" << text;
    logged_ = text;
}

} // namespace skyhold
