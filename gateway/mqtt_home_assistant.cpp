// SPDX-License-Identifier: GPL-3.0-or-later
// Home Assistant: a message for each of its entities, at DISCOVERY/KIND/SITE/NAME/config.
#include "gateway/mqtt_messages.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <iterator>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

struct ClassUnit {
    const char* deviceClass;
    const char16_t* unit; // as the monitor says it, in lower case
    const char16_t* name; // as Home Assistant does
};

// A class with a unit that it does not have is refused, and the entity with it.
constexpr ClassUnit kUnits[] = {
    {"temperature", u"°c", u"°C"},
    {"temperature", u"°f", u"°F"},
    {"wind_speed", u"km/h", u"km/h"},
    {"wind_speed", u"mph", u"mph"},
    {"wind_speed", u"m/s", u"m/s"},
    {"wind_speed", u"kn", u"kn"},
    {"humidity", u"%", u"%"},
    {"atmospheric_pressure", u"hpa", u"hPa"},
    {"atmospheric_pressure", u"mbar", u"mbar"},
    {"atmospheric_pressure", u"mb", u"mbar"},
    {"atmospheric_pressure", u"inhg", u"inHg"},
    {"atmospheric_pressure", u"in", u"inHg"},
    {"atmospheric_pressure", u"mmhg", u"mmHg"},
    {"atmospheric_pressure", u"kpa", u"kPa"},
};

// For names that may hold letters, digits and "_" alone.
QString idOf(const QString& prefix) {
    QString id = prefix;
    for (QChar& letter : id) {
        if (!(letter.unicode() < 128 && letter.isLetterOrNumber()))
            letter = u'_';
    }
    return id;
}

void addUnit(QJsonObject& entity, const ReadingRow& row, const QString& unit) {
    for (const ClassUnit& known : kUnits) {
        if (QLatin1String(row.deviceClass) == QLatin1String(known.deviceClass) &&
            unit.trimmed().toLower() == known.unit) {
            entity[u"device_class"_s] = QLatin1String(row.deviceClass);
            entity[u"unit_of_measurement"_s] = QString::fromUtf16(known.name);
            return;
        }
    }
    if (!unit.isEmpty())
        entity[u"unit_of_measurement"_s] = unit;
}

} // namespace

QList<MqttMessage> discoveryMessages(const QString& prefix, const QString& discoveryPrefix,
                                     const QJsonObject& document, int expirySeconds) {
    const QString id = idOf(prefix);
    QList<MqttMessage> all;
    const auto add = [&](const QString& kind, const QString& name, const QString& title,
                         const QString& topic, QJsonObject entity) {
        entity[u"name"_s] = title;
        entity[u"unique_id"_s] = id + u'_' + name;
        entity[u"state_topic"_s] = prefix + u'/' + topic;
        entity[u"qos"_s] = 1;
        entity[u"expire_after"_s] = expirySeconds;
        entity[u"device"_s] = QJsonObject{{u"identifiers"_s, QJsonArray{id}},
                                          {u"name"_s, u"Skyhold "_s + prefix.section(u'/', -1)},
                                          {u"model"_s, u"Kiv_Skyhold"_s},
                                          {u"sw_version"_s, QStringLiteral(SKYHOLD_VERSION)}};
        entity[u"origin"_s] = QJsonObject{{u"name"_s, u"skyhold-gateway"_s},
                                          {u"sw_version"_s, QStringLiteral(SKYHOLD_VERSION)}};
        all += MqttMessage{.topic = u"%1/%2/%3/%4/config"_s.arg(discoveryPrefix, kind, id, name),
                           .payload = QJsonDocument(entity).toJson(QJsonDocument::Compact),
                           .retain = true};
    };
    const QString availability = prefix + u"/availability"_s;
    // "On" is the danger in this class. It has no availability: when the gateway dies it is to turn
    // unsafe, which automations wait for, and not to something that is neither.
    add(u"binary_sensor"_s, u"safe"_s, u"Safety"_s, u"safe"_s,
        {{u"device_class"_s, u"safety"_s},
         {u"payload_on"_s, u"OFF"_s},
         {u"payload_off"_s, u"ON"_s}});
    add(u"sensor"_s, u"reason"_s, u"Reason"_s, u"reason"_s,
        {{u"icon"_s, u"mdi:comment-text-outline"_s}, {u"availability_topic"_s, availability}});
    if (document.isEmpty())
        return all;
    for (const ReadingRow& row : readingRows()) {
        const QString key = QLatin1String(row.key);
        const QJsonObject reading = document[u"readings"_s][key].toObject();
        if (reading.isEmpty())
            continue;
        QJsonObject entity{{u"availability_topic"_s, availability}};
        if (row.averaged)
            entity[u"state_class"_s] = u"measurement"_s;
        if (*row.icon != '\0')
            entity[u"icon"_s] = QLatin1String(row.icon);
        addUnit(entity, row, reading[u"unit"_s].toString());
        add(u"sensor"_s, key, QLatin1String(row.title), u"readings/"_s + key, entity);
    }
    return all;
}

} // namespace skyhold
