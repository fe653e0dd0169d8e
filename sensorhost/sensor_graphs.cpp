// SPDX-License-Identifier: GPL-3.0-or-later
#include "sensorhost/sensor_graphs.h"

#include "platform/automation_date.h"
#include "platform/clock.h"

namespace skyhold {

double sensorTemperatureIn(const QString& unit, double celsius) {
    return unit == QStringLiteral("F") ? celsius * 9 / 5 + 32 : celsius;
}

QList<QVariantList> sensorGraph(SensorGraph graph, const std::vector<SensorReading>& history,
                                const QString& temperatureUnit) {
    const QVariant unused = QVariantList(); // how an empty value goes over the bus
    QList<QVariantList> table{{unused}, {unused}, {unused}, {unused}};
    const auto temperature = [&](const std::optional<double>& celsius) {
        return sensorTemperatureIn(temperatureUnit, celsius.value_or(0));
    };
    for (const SensorReading& reading : history) {
        table[1].append(QVariant::fromValue(AutomationDate{daySerial(reading.time)}));
        switch (graph) {
        case SensorGraph::Cloud:
            table[2].append(temperature(reading.skyTemperature));
            table[3].append(reading.cloudCondition.value_or(0));
            break;
        case SensorGraph::Rain:
            table[2].append(reading.rainValue.value_or(0));
            table[3].append(reading.rainCondition.value_or(0));
            break;
        case SensorGraph::Day:
            table[2].append(reading.brightnessValue.value_or(0));
            table[3].append(reading.brightnessCondition.value_or(0));
            break;
        case SensorGraph::Temp:
            table[2].append(temperature(reading.temperature));
            table[3].append(temperature(reading.sensorTemperature));
            break;
        }
    }
    return table;
}

} // namespace skyhold
