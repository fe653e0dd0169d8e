// SPDX-License-Identifier: GPL-3.0-or-later
// Which broker, as whom, and what is sent to it.
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace skyhold {

struct MqttMessage {
    QString topic;
    QByteArray payload;
    bool retain = false;
    // Seconds after which the broker drops it; 0: never. Only with MQTT 5.
    int expirySeconds = 0;

    bool operator==(const MqttMessage&) const = default;
};

struct MqttBroker {
    QString host;
    int port = 0; // 0: the usual one
    QString user;
    QString password;
    bool tls = false;
    QString caFile;   // whom to trust with TLS; empty: whom this system trusts
    QString clientId; // empty: the broker makes one up
    // Version 5 where the broker speaks it; else 3.1.1.
    bool mqtt5 = false;
    double firstPause = 1; // seconds until the next try, twice as many after each, at most:
    double longestPause = 60;
    // Published by the broker when the connection ends without a goodbye.
    std::optional<MqttMessage> will = std::nullopt;

    int usedPort() const { return port > 0 ? port : tls ? 8883 : 1883; }
    QString address() const; // "HOST:PORT"
};

// From "HOST", "HOST:PORT" or "[::1]:PORT".
bool readBrokerAddress(const QString& text, MqttBroker& broker, QString& fault);

// The first line of the file, which nobody but its owner may read.
bool readPasswordFile(const QString& path, MqttBroker& broker, QString& fault);

// Whether messages can be published there: no wildcards, not empty, not too long.
bool isTopic(const QString& text);

} // namespace skyhold
