// SPDX-License-Identifier: GPL-3.0-or-later
#include "gateway/mqtt_messages.h"
#include "gateway/options.h"
#include "mqtt/outbox.h"
#include "state_of.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

View viewOf(const QJsonObject& document, std::int64_t ageMs = 0, std::int64_t silentMs = 0) {
    StateBoard board;
    board.publish(snapshotOf(QJsonDocument(document).toJson(), kHeard));
    board.answered(kHeard + ageMs - silentMs);
    return board.look(kHeard + ageMs);
}

QJsonObject with(QJsonObject document, const QString& name, const QJsonValue& value) {
    document[name] = value;
    return document;
}

MqttMessage of(const QList<MqttMessage>& messages, const QString& topicEnd) {
    for (const MqttMessage& message : messages) {
        if (message.topic.endsWith(topicEnd))
            return message;
    }
    return {};
}

} // namespace

TEST(Mqtt, WhatSaysSafeExpires) {
    QJsonObject unsafe = with(safeDocument(), u"safe"_s, false);
    unsafe[u"verdict"_s] = u"unsafe"_s;
    unsafe[u"causes"_s] = QJsonArray{QJsonObject{{u"text"_s, u"Rain Wet"_s}},
                                     QJsonObject{{u"text"_s, QString(400, u'x')}}};
    const struct {
        View view;
        const char* safe;
        int safeExpiry;
        int stateExpiry;
        const char* reason;
        const char* humidity;
    } cases[] = {
        {viewOf(safeDocument()), "ON", 17, 17, "Safe", "80.5"},
        {viewOf(safeDocument(), 16'900), "ON", 1, 1, "Safe", "80.5"},
        {viewOf(unsafe), "OFF", 0, 0, "Rain Wet; xxxx", "80.5"},
        // It says both: nobody may read the one without the other for longer than it counts.
        {viewOf(with(safeDocument(), u"verdict"_s, u"unsafe"_s)), "OFF", 0, 17,
         "The monitor does not say why", "80.5"},
        {viewOf(with(safeDocument(), u"session"_s, u"idle"_s)), "OFF", 0, 17,
         "The monitor does not say why", "None"},
        {viewOf(safeDocument(), 17'001), "OFF", 0, 0, "The monitor's last cycle is 17 s old",
         "None"},
        {viewOf(safeDocument(), 5000, 4001), "OFF", 0, 0, "The monitor does not answer", "None"},
    };
    for (const auto& row : cases) {
        const QList<MqttMessage> all = stateMessages(u"p"_s, row.view);
        EXPECT_EQ(all.constFirst(), (MqttMessage{u"p/safe"_s, row.safe, true, row.safeExpiry}));
        EXPECT_EQ(of(all, u"p/state"_s).expirySeconds, row.stateExpiry) << row.reason;
        EXPECT_TRUE(of(all, u"p/reason"_s).payload.startsWith(row.reason))
            << of(all, u"p/reason"_s).payload.constData();
        EXPECT_LE(QString::fromUtf8(of(all, u"p/reason"_s).payload).size(), 250);
        EXPECT_EQ(of(all, u"readings/humidity"_s).payload, row.humidity);
        EXPECT_EQ(of(all, u"readings/dew_point"_s).payload, "None");
    }
}

TEST(Mqtt, HomeAssistantIsSentUnitsThatItKnows) {
    QJsonObject document = safeDocument();
    QJsonObject readings = document[u"readings"_s].toObject();
    readings[u"dew_spread"_s] = measuredValue(3, u"°C"_s);
    readings[u"pressure"_s] = measuredValue(30, u"INHG"_s);
    document[u"readings"_s] = readings;
    const QList<MqttMessage> all =
        discoveryMessages(u"skyhold/hill 1"_s, u"homeassistant"_s, document, 17);
    const auto entity = [&](const char* name) {
        const MqttMessage message =
            of(all, u"/skyhold_hill_1/%1/config"_s.arg(QLatin1String(name)));
        EXPECT_TRUE(message.retain);
        EXPECT_EQ(message.expirySeconds, 0);
        return QJsonDocument::fromJson(message.payload).object();
    };
    const QJsonObject safe = entity("safe");
    EXPECT_EQ(safe[u"device_class"_s], u"safety"_s);
    EXPECT_EQ(safe[u"payload_on"_s], u"OFF"_s); // on is the danger
    EXPECT_EQ(safe[u"payload_off"_s], u"ON"_s);
    EXPECT_EQ(safe[u"expire_after"_s], 17);
    EXPECT_FALSE(safe.contains(u"availability_topic"_s));
    const struct {
        const char* name;
        const char* deviceClass;
        const char* unit;
    } cases[] = {{"cloud", "temperature", "°F"},
                 {"wind", "wind_speed", "km/h"},
                 {"gust", "", "furlongs"},
                 {"dew_spread", "", "°C"},
                 {"pressure", "atmospheric_pressure", "inHg"},
                 {"wind_direction", "", "°"}};
    for (const auto& row : cases) {
        const QJsonObject sensor = entity(row.name);
        EXPECT_EQ(sensor[u"device_class"_s].toString(), QLatin1String(row.deviceClass)) << row.name;
        EXPECT_EQ(sensor[u"unit_of_measurement"_s].toString(), QString::fromUtf8(row.unit));
        EXPECT_EQ(sensor[u"availability_topic"_s], u"skyhold/hill 1/availability"_s);
        EXPECT_EQ(sensor[u"state_topic"_s],
                  u"skyhold/hill 1/readings/"_s + QLatin1String(row.name));
        EXPECT_EQ(sensor[u"device"_s], safe[u"device"_s]);
    }
}

TEST(Mqtt, TenThousandChangesDoNotPileUp) {
    StateBoard board;
    MqttFeed feed(u"p"_s, u"h"_s);
    Outbox outbox;
    std::size_t most = 0;
    std::int64_t now = kHeard;
    QHash<QString, QByteArray> broker;
    const auto send = [&] {
        while (const auto message = outbox.next())
            broker[message->topic] = message->payload;
    };
    for (int i = 0; i < 10'000; ++i, now += 1000) {
        const bool safe = i % 2 == 0;
        QJsonObject document = with(safeDocument(), u"cycle"_s, i);
        document[u"verdict"_s] = safe ? u"safe"_s : u"unsafe"_s;
        document[u"safe"_s] = safe;
        board.publish(snapshotOf(QJsonDocument(document).toJson(), now));
        board.answered(now);
        for (const MqttMessage& message : feed.due(board.look(now), now))
            outbox.add(message);
        EXPECT_TRUE(feed.due(board.look(now), now).isEmpty());
        send(); // a broker that acknowledges nothing
        most = std::max(most, outbox.waiting());
    }
    EXPECT_LT(most, 40U);
    for (int i = 0; i < 100; ++i) {
        outbox.acknowledge();
        send();
    }
    EXPECT_TRUE(outbox.empty() || outbox.waiting() == 0);
    EXPECT_EQ(broker[u"p/safe"_s], "OFF"); // the last, and "state" is that of the same cycle
    EXPECT_EQ(QJsonDocument::fromJson(broker[u"p/state"_s])[u"cycle"_s], 9999);
}

TEST(Mqtt, IsPublishedAgainWhenItMustBe) {
    StateBoard board;
    MqttFeed feed(u"p"_s, u"h"_s);
    board.publish(snapshotOf(QJsonDocument(safeDocument()).toJson(), kHeard));
    board.answered(kHeard);
    const auto due = [&](std::int64_t afterMs) {
        const QList<MqttMessage> all = feed.due(board.look(kHeard + afterMs), kHeard + afterMs);
        return std::pair(of(all, u"p/safe"_s).payload, !of(all, u"safe/config"_s).topic.isEmpty());
    };
    const std::pair<QByteArray, bool> nothing;
    EXPECT_EQ(due(0), std::pair(QByteArray("ON"), true));
    EXPECT_EQ(due(1000), nothing);
    feed.announce();
    EXPECT_EQ(due(1000), std::pair(QByteArray(), true));
    EXPECT_EQ(due(4001), std::pair(QByteArray("OFF"), false)); // nobody has answered
    EXPECT_EQ(due(5000), nothing);
    EXPECT_EQ(due(9001), std::pair(QByteArray("OFF"), false));
    feed.forget();
    EXPECT_EQ(due(9002), std::pair(QByteArray("OFF"), true));
}

TEST(Mqtt, OptionsAreReadOrRefused) {
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"password"_s);
    QFile password(file);
    ASSERT_TRUE(password.open(QFile::WriteOnly));
    password.write("se cret\r\nmore\n");
    password.close();
    QString fault;
    const auto parse = [&](const QString& more) {
        fault.clear();
        return parseOptions(
            QStringList{u"skyhold-gateway"_s} + more.split(u'|', Qt::SkipEmptyParts), fault);
    };
    password.setPermissions(QFile::ReadOwner);
    const auto usual = parse(u"--mqtt|house|--mqtt-user|me|--mqtt-password-file|"_s + file +
                             u"|--mqtt-prefix|skyhold/hill|--hook|mail -s \"a b\" me"_s);
    ASSERT_TRUE(usual && usual->outlets.mqtt) << qPrintable(fault);
    const MqttBroker& broker = usual->outlets.mqtt->broker;
    EXPECT_EQ(broker.address(), u"house:1883"_s);
    EXPECT_EQ(broker.password, u"se cret"_s);
    EXPECT_EQ(broker.clientId, u"skyhold-hill"_s);
    EXPECT_FALSE(broker.tls);
    EXPECT_EQ(usual->outlets.hooks, (QList<QStringList>{{u"mail"_s, u"-s"_s, u"a b"_s, u"me"_s}}));
    const auto encrypted = parse(u"--mqtt|[::1]|--mqtt-ca|"_s + file);
    ASSERT_TRUE(encrypted);
    EXPECT_EQ(encrypted->outlets.mqtt->broker.address(), u"[::1]:8883"_s);
    EXPECT_TRUE(encrypted->outlets.mqtt->broker.tls);
    password.setPermissions(QFile::ReadOwner | QFile::ReadGroup);
    for (const QString& bad :
         {u"--mqtt|house:0"_s, u"--mqtt|house:99999"_s, u"--mqtt|mqtt://house"_s, u"--mqtt|a b"_s,
          u"--mqtt|"_s, u"--mqtt|house|--mqtt-prefix|a/#"_s, u"--mqtt|house|--mqtt-prefix|"_s,
          u"--mqtt|house|--mqtt-prefix|a//b"_s, u"--mqtt|house|--mqtt-ca|/nowhere"_s,
          u"--mqtt|house|--mqtt-password-file|/nowhere"_s,
          u"--mqtt|house|--mqtt-password-file|"_s + file, u"--mqtt-user|me"_s, u"--hook| "_s,
          u"--hook-limit|0"_s, u"--hook-limit|nan"_s}) {
        EXPECT_FALSE(parse(bad)) << qPrintable(bad);
        EXPECT_FALSE(fault.isEmpty());
    }
}

} // namespace skyhold
