// SPDX-License-Identifier: GPL-3.0-or-later
#include "sensors/mqtt_source.h"

#include "sensors/payload.h"

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

} // namespace

MqttSource::MqttSource(const SourceSettings& settings, SourceReadings& readings)
    : settings_(settings)
    , readings_(readings) {}

void MqttSource::start() {
    MqttBroker broker{.host = {},
                      .user = settings_.text(u"user"_s),
                      .password = settings_.text(u"password"_s),
                      .tls = settings_.yes(u"tls"_s),
                      .caFile = settings_.text(u"ca"_s),
                      .clientId = {},
                      .firstPause = settings_.number(u"retry"_s),
                      .longestPause = settings_.number(u"retry"_s)};
    QString fault;
    if (!readBrokerAddress(settings_.text(u"broker"_s), broker, fault)) {
        readings_.setTrouble(fault);
        return;
    }
    connection_ = std::make_unique<MqttConnection>(broker);
    for (const QString& address : readings_.wanted())
        connection_->Topics.append(address.section(u'#', 0, 0));
    connection_->Topics.removeDuplicates();
    connection_->Connected = [this] {
        readings_.setTrouble({});
    };
    connection_->Lost = [this](const QString& why) {
        lose(u"no broker at %1: %2"_s.arg(connection_->broker().address(), why));
    };
    connection_->Arrived = [this](const MqttMessage& message, std::int64_t atMs) {
        if (!message.retain)
            take(message, atMs);
    };
    connection_->start();
}

void MqttSource::lose(const QString& why) {
    readings_.dropAll();
    readings_.setTrouble(why);
}

void MqttSource::take(const MqttMessage& message, std::int64_t atMs) {
    QString fault;
    const auto values = payloadValues(message.payload, fault);
    const QSet<QString> wanted = readings_.wanted();
    for (const QString& address : wanted) {
        if (address.section(u'#', 0, 0) != message.topic)
            continue;
        const QString key = address.contains(u'#') ? address.section(u'#', 1) : u"value"_s;
        // Some devices spread their values over several messages.
        if (!values)
            readings_.drop(address);
        else if (const auto value = values->find(key); value != values->end())
            readings_.take(address, *value, atMs);
    }
    readings_.setTrouble(fault.isEmpty() ? QString() : message.topic + u": "_s + fault);
}

} // namespace skyhold
