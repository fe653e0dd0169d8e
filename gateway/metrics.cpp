// SPDX-License-Identifier: GPL-3.0-or-later
#include "gateway/metrics.h"

#include "gateway/readings.h"

#include <QJsonArray>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

class Text {
  public:
    void family(const char* name, const char* type, const char* help) {
        name_ = name;
        text_ += QByteArray("# HELP ") + name + ' ' + help + "\n# TYPE " + name + ' ' + type + '\n';
    }
    void add(double value) { addLine({}, value); }
    void add(const char* label, const QByteArray& of, double value) {
        addLine('{' + QByteArray(label) + "=\"" + escaped(of) + "\"}", value);
    }
    void add(const char* label, const QByteArray& of, std::optional<double> value) {
        if (value)
            add(label, of, *value);
    }
    QByteArray text() const { return text_; }

  private:
    void addLine(const QByteArray& labels, double value) {
        text_ += name_ + labels + ' ' + QByteArray::number(value, 'g', 12) + '\n';
    }
    static QByteArray escaped(QByteArray text) {
        return text.replace('\\', "\\\\").replace('"', "\\\"").replace('\n', "\\n");
    }

    QByteArray name_;
    QByteArray text_;
};

void addReadings(Text& text, const QJsonObject& document) {
    text.family("skyhold_reading_celsius", "gauge", "Temperatures; dew_spread is a difference.");
    for (const char* name :
         {"cloud", "temperature", "dew_point", "ambient_temperature", "sensor_temperature"})
        text.add("quantity", name, temperatureOf(document, name));
    text.add("quantity", "dew_spread", temperatureDifferenceOf(document, "dew_spread"));
    text.family("skyhold_reading_meters_per_second", "gauge", "Wind speeds.");
    for (const char* name : {"wind", "gust"})
        text.add("quantity", name, speedOf(document, name));
    text.family("skyhold_reading_degrees", "gauge",
                "Where the wind comes from; 0 in a calm, 360 is north.");
    text.add("quantity", "wind_direction", directionOf(document));
    text.family("skyhold_reading_ratio", "gauge", "Relative humidity, 0 to 1.");
    if (const std::optional<double> percent = plainOf(document, "humidity"))
        text.add("quantity", "humidity", *percent / 100);
    text.family("skyhold_reading_pascals", "gauge", "Air pressure as the station gives it.");
    if (const std::optional<double> hpa = seaPressureOf(document))
        text.add("quantity", "pressure", *hpa * 100);
    text.family("skyhold_reading_raw", "gauge", "What the sensor counts: rain and brightness.");
    for (const char* name : {"rain", "brightness"})
        text.add("quantity", name, plainOf(document, name));
    text.family("skyhold_level", "gauge", "Condition level, 1 to 3; 0 is not known.");
    const QJsonObject readings = document[u"readings"_s].toObject();
    for (auto reading = readings.begin(); reading != readings.end(); ++reading) {
        const QJsonValue level = (*reading)[u"level"_s];
        if (level.isDouble())
            text.add("quantity", reading.key().toUtf8(), level.toDouble());
    }
}

void addSources(Text& text, const QJsonObject& document) {
    text.family("skyhold_source_ok", "gauge", "Whether a source works.");
    for (const char* name : {"sensor", "station"})
        text.add("source", name,
                 document[u"sources"_s][QLatin1String(name)][u"state"_s] == u"ok"_s ? 1.0 : 0.0);
    text.family("skyhold_source_age_seconds", "gauge", "Age of a source's data at the last cycle.");
    for (const char* name : {"sensor", "station"})
        text.add("source", name, ageOf(document, name));
}

void addMonitor(Text& text, const View& view, const QJsonObject& document) {
    text.family("skyhold_build_info", "gauge", "Always 1; the monitor's version.");
    text.add("version", document[u"monitor"_s][u"version"_s].toString().toUtf8(), 1.0);
    text.family("skyhold_cycles_total", "counter", "Read cycles of this session.");
    text.add(document[u"cycle"_s].toDouble());
    text.family("skyhold_cycle_age_seconds", "gauge", "Since the last cycle was heard.");
    text.add(static_cast<double>(view.ageMs) / 1000);
    text.family("skyhold_interval_seconds", "gauge", "From one cycle to the next.");
    text.add(document[u"interval_s"_s].toDouble());
    text.family("skyhold_wait_seconds", "gauge", "What is left of the safe delay.");
    text.add(document[u"wait_s"_s].toDouble());
    text.family("skyhold_verdict", "gauge", "1 for the verdict that holds.");
    for (const char* name : {"safe", "waiting", "unsafe", "none"})
        text.add("verdict", name, document[u"verdict"_s] == QLatin1String(name) ? 1.0 : 0.0);
    text.family("skyhold_causes", "gauge", "Number of causes that it is not safe.");
    text.add(static_cast<double>(document[u"causes"_s].toArray().size()));
    text.family("skyhold_errors", "gauge", "Number of status codes of the last cycle.");
    text.add(static_cast<double>(document[u"codes"_s].toArray().size()));
    text.family("skyhold_roof_open", "gauge", "1 open, 0 closed; missing while not known.");
    const QString roof = document[u"roof"_s][u"state"_s].toString();
    if (roof == u"open" || roof == u"closed")
        text.add(roof == u"open" ? 1 : 0);
    text.family("skyhold_alarm_sounding", "gauge", "Whether an alarm sounds.");
    text.add(document[u"alarm"_s][u"sounding"_s] == true ? 1 : 0);
}

} // namespace

QByteArray metricsText(const View& view, const HttpServer::Counts& counts) {
    Text text;
    text.family("skyhold_safe", "gauge", "1 while it is safe, 0 for everything else.");
    text.add(view.safe() ? 1 : 0);
    text.family("skyhold_up", "gauge", "Whether the monitor is heard.");
    text.add(view.live() ? 1 : 0);
    if (view.live()) {
        const QJsonObject& document = view.snapshot->document;
        addMonitor(text, view, document);
        addSources(text, document);
        addReadings(text, document);
    }
    text.family("skyhold_gateway_build_info", "gauge", "Always 1; the gateway's version.");
    text.add("version", SKYHOLD_VERSION, 1.0);
    text.family("skyhold_gateway_requests_total", "counter", "Requests since it started.");
    text.add(static_cast<double>(counts.requests));
    text.family("skyhold_gateway_errors_total", "counter",
                "Requests and connections that were refused.");
    text.add(static_cast<double>(counts.refused));
    text.family("skyhold_gateway_connections", "gauge", "Open connections.");
    text.add(counts.connections);
    text.family("skyhold_gateway_listeners", "gauge", "Clients that follow the events.");
    text.add(counts.listeners);
    return text.text();
}

} // namespace skyhold
