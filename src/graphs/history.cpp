// SPDX-License-Identifier: GPL-3.0-or-later
#include "graphs/history.h"

#include "platform/automation_date.h"
#include "platform/clock.h"
#include "platform/text_forms.h"
#include "units/conversion.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace skyhold {

namespace {

constexpr std::int32_t kFewestPoints = 20;
constexpr std::int32_t kMostPoints = 2000;

std::int32_t wholeNumber(const NumberBox& box, std::int32_t lowest, std::int32_t highest) {
    return static_cast<std::int32_t>(std::clamp<double>(roundHalfEven(box.Value), lowest, highest));
}

std::int32_t pointsWanted(const NumberBox& graphNoPoints) {
    return wholeNumber(graphNoPoints, kFewestPoints, kMostPoints);
}

double orNone(std::optional<double> value) {
    return value.value_or(std::numeric_limits<double>::quiet_NaN());
}

QVariant orEmpty(double value) {
    return std::isnan(value) ? QVariant() : QVariant(value);
}

GraphPoint pointOf(const CurrentReadings& readings) {
    return {.date = readings.LastReading.isValid() ? daySerial(readings.LastReading) : 0,
            .wind = orNone(readings.WindSpeed),
            .gust = orNone(readings.GustSpeed),
            .direction = orNone(readings.WindDirection),
            .spread = orNone(readings.StationTemperature) - orNone(readings.DewPointValue),
            .humidity = orNone(readings.HumidityValue),
            .temperature = orNone(readings.StationTemperature),
            .valid = readings.StationValid};
}

// Makes room on the ring for one more point, the newest.
void advance(GraphHistory& history) {
    history.LastElem = history.next(history.LastElem);
    if (history.LastElem <= history.FirstElem)
        history.FirstElem = history.next(history.LastElem);
}

QString twoDigits(std::int64_t number) {
    return QString::number(number).rightJustified(2, u'0');
}

} // namespace

void AddReading(GraphHistory& history, const CurrentReadings& readings,
                const NumberBox& graphNoPoints) {
    if (history.SampleCounter >= history.SampleEvery)
        history.SampleCounter = 0;
    const bool sampled = history.SampleCounter == 0;
    ++history.SampleCounter;
    if (!sampled)
        return;

    const GraphPoint point = pointOf(readings);
    const std::int32_t wanted = pointsWanted(graphNoPoints);
    if (history.capacity() != wanted) {
        history.Points.assign(static_cast<std::size_t>(wanted) + 1, {});
        history.FirstElem = 1;
        history.LastElem = 1;
        history.point(1) = point;
    }
    advance(history);
    history.point(history.LastElem) = point;
}

void SetCapacity(GraphHistory& history, GraphControls& graphs, const ComboBox& refreshRead) {
    const std::int32_t wanted = pointsWanted(graphs.GraphNoPoints);
    graphs.GraphNoPoints.Value = wanted;
    if (wanted != history.capacity()) {
        history.Points.clear();
        history.FirstElem = 0;
        history.LastElem = 0;
    }
    UpdateSpanText(history, graphs, refreshRead);
}

void SetSampleEvery(GraphHistory& history, GraphControls& graphs, const ComboBox& refreshRead) {
    history.SampleEvery =
        wholeNumber(graphs.GraphFreq, 1, std::numeric_limits<std::int32_t>::max());
    graphs.GraphFreq.Value = history.SampleEvery;
    UpdateSpanText(history, graphs, refreshRead);
}

void UpdateSpanText(const GraphHistory& history, GraphControls& graphs,
                    const ComboBox& refreshRead) {
    const std::int64_t interval = refreshRead.chosenSeconds();
    const std::int64_t total = history.SampleEvery * interval * pointsWanted(graphs.GraphNoPoints);
    graphs.GraphSpan.Caption = QString::number(total);
    graphs.GraphSpanDesc.Caption =
        QStringLiteral("%1 h %2 m %3 s")
            .arg(twoDigits(total / 3600), twoDigits(total / 60 % 60), twoDigits(total % 60));
}

void convertSpeedHistory(GraphHistory& history, SpeedCode fromCode, SpeedCode toCode) {
    std::int32_t elem = history.FirstElem;
    for (std::int32_t left = history.count(); left > 0; --left, elem = history.next(elem)) {
        GraphPoint& point = history.point(elem);
        point.wind = ConvertSpeed(fromCode, toCode, point.wind);
        point.gust = ConvertSpeed(fromCode, toCode, point.gust);
    }
}

void convertTemperatureHistory(GraphHistory& history, TemperatureCode fromCode,
                               TemperatureCode toCode) {
    std::int32_t elem = history.FirstElem;
    for (std::int32_t left = history.count(); left > 0; --left, elem = history.next(elem)) {
        GraphPoint& point = history.point(elem);
        point.spread = ConvertTemperatureDifference(fromCode, toCode, point.spread);
        point.temperature = ConvertTemperature(fromCode, toCode, point.temperature);
    }
}

QVariant historyArray(const GraphHistory& history) {
    constexpr qsizetype kFields = 8;
    QList<QVariantList> fields(kFields, QVariantList(history.capacity() + 1));
    std::int32_t elem = history.FirstElem;
    for (std::int32_t left = history.count(); left > 0; --left, elem = history.next(elem)) {
        const GraphPoint& point = history.point(elem);
        fields[1][elem] = QVariant::fromValue(AutomationDate{point.date});
        fields[2][elem] = orEmpty(point.wind);
        fields[3][elem] = orEmpty(point.gust);
        fields[4][elem] = orEmpty(point.direction);
        fields[5][elem] = orEmpty(point.spread);
        fields[6][elem] = orEmpty(point.humidity);
        fields[7][elem] = orEmpty(point.temperature);
    }
    return QVariant::fromValue(fields);
}

} // namespace skyhold
