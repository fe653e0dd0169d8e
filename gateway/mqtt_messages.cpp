// SPDX-License-Identifier: GPL-3.0-or-later
#include "gateway/mqtt_messages.h"

#include "gateway/readings.h"

#include <QJsonArray>

#include <algorithm>
#include <cmath>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr qsizetype kLongestReason = 250; // Home Assistant cuts off a state of 255

constexpr ReadingRow kRows[] = {
    {"cloud", "Sky temperature", "temperature", "", true},
    {"rain", "Rain", "", "mdi:weather-rainy", true},
    {"brightness", "Brightness", "", "mdi:brightness-6", true},
    {"wind", "Wind", "wind_speed", "", true},
    {"gust", "Gust", "wind_speed", "", true},
    {"wind_direction", "Wind direction", "", "mdi:compass-outline", false},
    {"temperature", "Temperature", "temperature", "", true},
    // A difference, which a conversion between °C and °F would take for a temperature.
    {"dew_spread", "Above the dew point", "", "mdi:thermometer-water", true},
    {"dew_point", "Dew point", "temperature", "", true},
    {"humidity", "Humidity", "humidity", "", true},
    {"pressure", "Pressure", "atmospheric_pressure", "", true},
    {"ambient_temperature", "Ambient temperature of the sensor", "temperature", "", true},
    {"sensor_temperature", "Temperature of the sensor", "temperature", "", true},
    {"rain_heater", "Heater of the rain sensor", "", "mdi:radiator", true},
};

// Until the document is too old to count; at least a second.
int expiryOf(const View& view) {
    return static_cast<int>(
        std::max<std::int64_t>((view.snapshot->keepMs - view.ageMs + 999) / 1000, 1));
}

QByteArray valueText(const QJsonObject& reading) {
    const QJsonValue value = reading[u"value"_s];
    if (!value.isDouble())
        return "None"; // which Home Assistant reads as unknown
    return QByteArray::number(std::round(value.toDouble() * 1000) / 1000, 'g', 12);
}

} // namespace

std::span<const ReadingRow> readingRows() {
    return kRows;
}

QString reasonText(const View& view) {
    const QJsonObject document = view.document();
    QStringList texts;
    const QJsonArray causes = document[u"causes"_s].toArray();
    for (const auto& cause : causes)
        texts += cause[u"text"_s].toString().simplified();
    if (view.safe())
        texts = {document[u"nearest"_s][u"text"_s].toString().simplified()};
    texts.removeAll(QString());
    if (texts.isEmpty())
        texts += view.safe() ? u"Safe"_s : u"The monitor does not say why"_s;
    QString text = texts.join(u"; "_s);
    if (text.size() > kLongestReason)
        text = text.first(kLongestReason - 1) + u'…';
    return text;
}

QList<MqttMessage> stateMessages(const QString& prefix, const View& view) {
    const QJsonObject document = view.document();
    const int expiry = view.live() ? expiryOf(view) : 0;
    const auto message = [&](const QString& topic, const QByteArray& payload, bool expires) {
        return MqttMessage{.topic = prefix + u'/' + topic,
                           .payload = payload,
                           .retain = true,
                           .expirySeconds = expires ? expiry : 0};
    };
    const bool safe = view.safe();
    QList<MqttMessage> all{
        message(u"safe"_s, safe ? "ON" : "OFF", safe),
        message(u"state"_s, view.documentText(), document[u"safe"_s] != false),
        message(u"reason"_s, reasonText(view).toUtf8(), safe),
    };
    for (const ReadingRow& row : kRows)
        all += message(u"readings/"_s + QLatin1String(row.key),
                       valueText(readingOf(document, row.key)), true);
    return all;
}

QList<MqttMessage> MqttFeed::due(const View& view, std::int64_t nowMs) {
    const bool live = view.live();
    const bool safe = view.safe();
    const bool repeats = !live && nowMs - atMs_ >= kRepeatMs;
    QList<MqttMessage> all;
    if (published_ != view.snapshot || live_ != live || safe_ != safe || repeats) {
        all = stateMessages(prefix_, view);
        published_ = view.snapshot;
        live_ = live;
        safe_ = safe;
        atMs_ = nowMs;
    } else if (!announced_.isEmpty()) {
        return all;
    }
    if (discoveryPrefix_.isEmpty())
        return all;
    const QJsonObject& document = view.snapshot->document;
    if (!document.isEmpty())
        expirySeconds_ = static_cast<int>((view.snapshot->keepMs + 999) / 1000);
    for (const MqttMessage& message :
         discoveryMessages(prefix_, discoveryPrefix_, document, expirySeconds_)) {
        QByteArray& announced = announced_[message.topic];
        if (announced == message.payload)
            continue;
        announced = message.payload;
        all += message;
    }
    return all;
}

void MqttFeed::forget() {
    published_.reset();
    announced_.clear();
}

} // namespace skyhold
