#include "datafiles/data_items.h"

#include "platform/text_encoding.h"

#include <algorithm>

namespace skyhold {

namespace {

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
    switch (item) {
    case 1:
        return date(u"yyyy-mm-dd");
    case 2:
        return date(u"hh:mm:ss");
    case 11:
        return number(readings.SensorValues[0], u"0.0");
    case 12:
        return number(readings.SensorValues[1], u"0");
    case 13:
        return measured(readings.WindSpeed, u"0");
    case 14:
        return measured(readings.GustSpeed, u"0");
    case 15:
        return measured(readings.WindDirection, u"0.0");
    case 16:
        return number(readings.AmbientTemperature, u"0.0");
    case 17:
        return measured(readings.DewPointValue, u"0.0");
    case 18:
        return measured(readings.HumidityValue, u"0");
    case 19:
        return number(readings.SensorValues[2], u"0");
    case 20:
        number(readings.SensorValues[4], u"0");
        line.append(u'%');
        return;
    case 21:
        return number(readings.SensorValues[5], u"0.0");
    case 22:
        return number(readings.SensorValues[3], u"0.0");
    case 23:
        return appendText(line, readings.RainHeaterStatus);
    case 24:
        return appendText(line, switchText(readings.SwitchValue));
    case 25:
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
