// SPDX-License-Identifier: GPL-3.0-or-later
#include "gateway/mqtt_publisher.h"

#include "gateway/gateway_log.h"

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kLastWordsMs = 1000; // shorter than the patience of whoever ends it

MqttBroker withWill(const MqttOptions& options, const QString& idEnd, const QString& topic,
                    const QByteArray& payload) {
    MqttBroker broker = options.broker;
    broker.clientId += idEnd;
    broker.mqtt5 = true;
    broker.will =
        MqttMessage{.topic = options.prefix + u'/' + topic, .payload = payload, .retain = true};
    return broker;
}

View silent(const QString& why) {
    View view;
    view.snapshot = std::make_shared<const Snapshot>();
    view.fault = why;
    return view;
}

} // namespace

MqttPublisher::MqttPublisher(const MqttOptions& options, const StateBoard& board)
    : options_(options)
    , board_(board)
    , feed_(options.prefix, options.discovery)
    , main_(withWill(options, {}, u"safe"_s, "OFF"))
    , state_(withWill(options, u"-state"_s, u"state"_s,
                      silent(u"The gateway is gone"_s).documentText()))
    , availability_(withWill(options, u"-availability"_s, u"availability"_s, "offline")) {
    if (!options_.discovery.isEmpty())
        main_.Topics = {options_.discovery + u"/status"_s};
    main_.Connected = [this] {
        log(u"connected to "_s + main_.broker().address());
        publishAll();
    };
    main_.Lost = [this](const QString& why) {
        log(u"no broker at %1: %2"_s.arg(main_.broker().address(), why));
    };
    main_.Refused = [this](const QString& why) {
        log(u"the broker refuses what is published: "_s + why);
    };
    main_.Arrived = [this](const MqttMessage& message, std::int64_t) {
        if (message.payload == "online" && !message.retain) {
            feed_.announce();
            look();
        }
    };
    // Its will may have replaced the document meanwhile.
    state_.Connected = [this] {
        publishAll();
    };
    availability_.Connected = [this] {
        availability_.publish(
            {.topic = options_.prefix + u"/availability"_s, .payload = "online", .retain = true});
    };
    for (MqttConnection* connection : {&main_, &state_, &availability_})
        connection->start();
}

MqttPublisher::~MqttPublisher() {
    ending_ = true;
    feed_.forget();
    publish(silent(u"The gateway has stopped"_s), bootMs());
    if (main_.connected() && !main_.flush(kLastWordsMs))
        log(u"the broker did not take the last message"_s);
}

void MqttPublisher::publishAll() {
    feed_.forget();
    look();
}

void MqttPublisher::look() {
    if (ending_)
        return;
    const std::int64_t now = bootMs();
    publish(board_.look(now), now);
}

void MqttPublisher::publish(const View& view, std::int64_t nowMs) {
    if (!main_.connected())
        return;
    for (const MqttMessage& message : feed_.due(view, nowMs))
        main_.publish(message);
}

void MqttPublisher::log(const QString& text) {
    if (text != logged_)
        qCInfo(gatewayLog).noquote() << "MQTT:" << text;
    logged_ = text;
}

} // namespace skyhold
