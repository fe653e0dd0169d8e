// SPDX-License-Identifier: GPL-3.0-or-later
#include "gateway/outlets.h"

#include <QFileInfo>
#include <QSysInfo>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr double kLongestHook = 600; // seconds
constexpr char kPasswordVariable[] = "SKYHOLD_MQTT_PASSWORD";

// By which sites are told apart until they are named.
QString hostName() {
    QString name = QSysInfo::machineHostName().section(u'.', 0, 0);
    return isTopic(name) ? name : u"site"_s;
}

bool readMqtt(const QCommandLineParser& parser, MqttOptions& mqtt, QString& fault) {
    MqttBroker& broker = mqtt.broker;
    if (!readBrokerAddress(parser.value(u"mqtt"_s), broker, fault))
        return false;
    broker.user = parser.value(u"mqtt-user"_s);
    broker.password = qEnvironmentVariable(kPasswordVariable);
    if (parser.isSet(u"mqtt-password-file"_s) &&
        !readPasswordFile(parser.value(u"mqtt-password-file"_s), broker, fault))
        return false;
    broker.caFile = parser.value(u"mqtt-ca"_s);
    broker.tls = parser.isSet(u"mqtt-tls"_s) || !broker.caFile.isEmpty();
    if (!broker.caFile.isEmpty() && !QFileInfo(broker.caFile).isReadable()) {
        fault = u"--mqtt-ca: %1 cannot be read"_s.arg(broker.caFile);
        return false;
    }
    mqtt.prefix = parser.isSet(u"mqtt-prefix"_s) ? parser.value(u"mqtt-prefix"_s)
                                                 : u"skyhold/"_s + hostName();
    mqtt.discovery = parser.value(u"mqtt-discovery"_s);
    if (!isTopic(mqtt.prefix) || !(mqtt.discovery.isEmpty() || isTopic(mqtt.discovery))) {
        fault = u"--mqtt-prefix and --mqtt-discovery take a topic, as skyhold/hill"_s;
        return false;
    }
    broker.clientId = parser.isSet(u"mqtt-client-id"_s) ? parser.value(u"mqtt-client-id"_s)
                                                        : QString(mqtt.prefix).replace(u'/', u'-');
    return true;
}

} // namespace

void addOutletOptions(QCommandLineParser& parser) {
    parser.addOptions({
        {u"mqtt"_s, u"The MQTT broker to publish the state at; docs/house.md has the topics."_s,
         u"HOST[:PORT]"_s},
        {u"mqtt-user"_s,
         u"As whom. The password is taken from the environment (SKYHOLD_MQTT_PASSWORD) or from:"_s,
         u"NAME"_s},
        {u"mqtt-password-file"_s, u"A file of yours alone whose first line is the password."_s,
         u"FILE"_s},
        {u"mqtt-tls"_s, u"Encrypted, to a broker whose certificate this system trusts."_s},
        {u"mqtt-ca"_s, u"Encrypted, to a broker whom this certificate trusts."_s, u"FILE"_s},
        {u"mqtt-prefix"_s, u"What the topics begin with (skyhold/HOSTNAME)."_s, u"PREFIX"_s},
        {u"mqtt-client-id"_s, u"By which the broker knows this gateway (from the prefix)."_s,
         u"ID"_s},
        {u"mqtt-discovery"_s,
         u"Where Home Assistant looks for devices (homeassistant); empty: it does not find this "
         u"one."_s,
         u"PREFIX"_s, u"homeassistant"_s},
        {u"hook"_s,
         u"A command to run at every event, without a shell; docs/house.md has the events. May be "
         u"given more than once."_s,
         u"COMMAND"_s},
        {u"hook-limit"_s, u"How long a hook may run (30)."_s, u"SECONDS"_s, u"30"_s},
    });
}

bool readOutletOptions(const QCommandLineParser& parser, OutletOptions& options, QString& fault) {
    if (parser.isSet(u"mqtt"_s)) {
        if (!readMqtt(parser, options.mqtt.emplace(), fault))
            return false;
    } else {
        for (const QString& name : parser.optionNames()) {
            if (name.startsWith(u"mqtt-"_s)) {
                fault = u"--%1 needs a broker (--mqtt)"_s.arg(name);
                return false;
            }
        }
    }
    for (const QString& line : parser.values(u"hook"_s)) {
        const QStringList command = QProcess::splitCommand(line);
        if (command.isEmpty()) {
            fault = u"--hook takes a command"_s;
            return false;
        }
        options.hooks += command;
    }
    bool sound = true;
    options.hookSeconds = parser.value(u"hook-limit"_s).toDouble(&sound);
    if (!sound || !(options.hookSeconds >= 0.1 && options.hookSeconds <= kLongestHook)) {
        fault = u"--hook-limit takes seconds from 0.1 to %1"_s.arg(kLongestHook);
        return false;
    }
    return true;
}

} // namespace skyhold
