// SPDX-License-Identifier: GPL-3.0-or-later
#include "datafiles/data_items.h"

#include "platform/text_encoding.h"

#include <algorithm>

namespace skyhold {

namespace {

// The items that are not the condition of a quantity; those are in the quantity table.
enum class DataItem {
    Date = 1,
    Time = 2,
    SkyTemperature = 11,
    RainValue,
    WindSpeed,
    GustSpeed,
    WindDirection,
    AmbientTemperature,
    DewPoint,
    Humidity,
    BrightnessValue,
    RainHeaterPercent,
    RainHeaterTemperature,
    SkySensorTemperature,
    RainHeaterStatus,
    SwitchState,
    Verdict
};

constexpr int kHeaderWidth = 25; // characters of a column's header that are kept

QStringView switchText(double value) {
    const double state = roundHalfEven(value);
    if (state == 0)
        return u"Unknown";
    if (state == 1)
        return u"Opened";
    return state == 2 ? u"Closed" : QStringView();
}

// The quantity whose condition the item is, if it is one's.
const QuantityRow* conditionItem(int item) {
    const QuantityTable& table = quantityTable();
    const auto* const found =
        std::find_if(table.begin(), table.end(),
                     [item](const QuantityRow& row) { return row.dataItem == item; });
    return found == table.end() ? nullptr : found;
}

// Adds the value text of item 1..25.
void addDataItem(TextBuffer& line, int item, const DataItemSource& source) {
    const CurrentReadings& readings = source.readings;
    const auto number = [&line, &source](double value, QStringView format) {
        appendNumber(line, value, format, source.forms);
    };
    // A missing value is an empty field.
    const auto measured = [&number](std::optional<double> value, QStringView format) {
        if (value)
            number(*value, format);
    };
    const auto date = [&line, &readings](QStringView format) {
        if (readings.LastReading.isValid())
            appendDate(line, readings.LastReading, format);
    };
    if (const QuantityRow* row = conditionItem(item))
        return appendText(line, source.describe(row->quantity, readings.Condition[row->quantity]));
    switch (static_cast<DataItem>(item)) {
    case DataItem::Date:
        return date(u"yyyy-mm-dd");
    case DataItem::Time:
        return date(u"hh:mm:ss");
    case DataItem::SkyTemperature:
        return number(readings.SensorValues[kSkyTemperature], u"0.0");
    case DataItem::RainValue:
        return number(readings.SensorValues[kRainValue], u"0");
    case DataItem::WindSpeed:
        return measured(readings.WindSpeed, u"0");
    case DataItem::GustSpeed:
        return measured(readings.GustSpeed, u"0");
    case DataItem::WindDirection:
        return measured(readings.WindDirection, u"0.0");
    case DataItem::AmbientTemperature:
        return number(readings.AmbientTemperature, u"0.0");
    case DataItem::DewPoint:
        return measured(readings.DewPointValue, u"0.0");
    case DataItem::Humidity:
        return measured(readings.HumidityValue, u"0");
    case DataItem::BrightnessValue:
        return number(readings.SensorValues[kBrightnessValue], u"0");
    case DataItem::RainHeaterPercent:
        number(readings.SensorValues[kRainHeaterPercent], u"0");
        line.append(u'%');
        return;
    case DataItem::RainHeaterTemperature:
        return number(readings.SensorValues[kRainHeaterTemperature], u"0.0");
    case DataItem::SkySensorTemperature:
        return number(readings.SensorValues[kSkySensorTemperature], u"0.0");
    case DataItem::RainHeaterStatus:
        return appendText(line, readings.RainHeaterStatus);
    case DataItem::SwitchState:
        return appendText(line, switchText(readings.SwitchValue));
    case DataItem::Verdict:
        return appendText(line, readings.UnsafeFlag ? u"Unsafe" : u"Safe");
    default:
        return;
    }
}

// A quote inside a field, here the text from `begin` on, is doubled. A line break or another
// control character, which a text of the sensor program may hold, becomes a blank: a line stays
// one line.
void escapeFrom(qsizetype begin, TextBuffer& line) {
    qsizetype quotes = 0;
    for (qsizetype i = begin; i < line.size(); ++i) {
        if (line[i] < u' ')
            line[i] = u' ';
        else if (line[i] == u'"')
            ++quotes;
    }
    if (quotes == 0)
        return;
    qsizetype from = line.size();
    line.resize(line.size() + quotes);
    for (qsizetype to = line.size(); quotes > 0;) {
        line[--to] = line[--from];
        if (line[from] == u'"') {
            line[--to] = u'"';
            --quotes;
        }
    }
}

// `addField` adds the text of one column.
template <class AddField>
QByteArray joinFields(const DataColumns& columns, AddField addField) {
    TextBuffer line;
    for (const DataColumn& column : columns) {
        if (!column.Prt)
            continue;
        appendText(line, line.isEmpty() ? u"\"" : u",\"");
        const qsizetype begin = line.size();
        addField(line, column);
        escapeFrom(begin, line);
        line.append(u'"');
    }
    return encodeAnsi(line);
}

} // namespace

QString FormatDataItem(int item, const DataItemSource& source) {
    TextBuffer text;
    addDataItem(text, item, source);
    return QString(text.constData(), text.size());
}

QByteArray dataHeaderLine(const DataColumns& columns) {
    return joinFields(columns, [](TextBuffer& line, const DataColumn& column) {
        appendText(line, QStringView(column.Hdr).left(kHeaderWidth).trimmed());
    });
}

QByteArray dataLine(const DataColumns& columns, const DataItemSource& source) {
    return joinFields(columns, [&source](TextBuffer& line, const DataColumn& column) {
        addDataItem(line, column.Cal, source);
    });
}

} // namespace skyhold
