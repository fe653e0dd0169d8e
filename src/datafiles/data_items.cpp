#include "datafiles/data_items.h"

#include "platform/text_encoding.h"

namespace skyhold {

namespace {

constexpr int kHeaderWidth = 25; // characters of a column's header that are kept

QString switchText(double value) {
    const double state = roundHalfEven(value);
    if (state == 0)
        return QStringLiteral("Unknown");
    if (state == 1)
        return QStringLiteral("Opened");
    return state == 2 ? QStringLiteral("Closed") : QString();
}

// A quote inside the text is doubled. A line break or another control character, which a text of
// the sensor program may hold, becomes a blank: a line stays one line.
void addQuoted(QString& line, const QString& text) {
    line += u'"';
    for (const QChar c : text) {
        line += c < u' ' ? QChar(u' ') : c;
        if (c == u'"')
            line += c;
    }
    line += u'"';
}

template <class Field>
QByteArray joinFields(const DataColumns& columns, Field field) {
    constexpr qsizetype kUsualLength = 512;
    QString line;
    line.reserve(kUsualLength);
    for (const DataColumn& column : columns) {
        if (!column.Prt)
            continue;
        if (!line.isEmpty())
            line += u',';
        addQuoted(line, field(column));
    }
    return encodeAnsi(line);
}

} // namespace

QString FormatDataItem(int item, const DataItemSource& source) {
    const CurrentReadings& readings = source.readings;
    const auto number = [&source](double value, QStringView format) {
        return formatNumber(value, format, source.forms);
    };
    const auto date = [&readings](QStringView format) {
        return readings.LastReading.isValid() ? formatDate(readings.LastReading, format)
                                              : QString();
    };
    const auto condition = [&source](Quantity quantity) {
        return source.describe(quantity, source.readings.level(quantity));
    };
    switch (item) {
    case 1:
        return date(u"yyyy-mm-dd");
    case 2:
        return date(u"hh:mm:ss");
    case 3:
        return condition(Quantity::Cloud);
    case 4:
        return condition(Quantity::Rain);
    case 5:
        return condition(Quantity::Wind);
    case 6:
        return condition(Quantity::Gust);
    case 7:
        return condition(Quantity::Temperature);
    case 8:
        return condition(Quantity::Dew);
    case 9:
        return condition(Quantity::Humidity);
    case 10:
        return condition(Quantity::Brightness);
    case 11:
        return number(readings.SensorValues[0], u"0.0");
    case 12:
        return number(readings.SensorValues[1], u"0");
    case 13:
        return number(readings.WindSpeed, u"0");
    case 14:
        return number(readings.GustSpeed, u"0");
    case 15:
        return number(readings.WindDirection, u"0.0");
    case 16:
        return number(readings.AmbientTemperature, u"0.0");
    case 17:
        return number(readings.DewPointValue, u"0.0");
    case 18:
        return number(readings.HumidityValue, u"0");
    case 19:
        return number(readings.SensorValues[2], u"0");
    case 20:
        return number(readings.SensorValues[4], u"0") + u'%';
    case 21:
        return number(readings.SensorValues[5], u"0.0");
    case 22:
        return number(readings.SensorValues[3], u"0.0");
    case 23:
        return readings.RainHeaterStatus;
    case 24:
        return switchText(readings.SwitchValue);
    case 25:
        return readings.UnsafeFlag ? QStringLiteral("Unsafe") : QStringLiteral("Safe");
    default:
        return {};
    }
}

QByteArray dataHeaderLine(const DataColumns& columns) {
    return joinFields(
        columns, [](const DataColumn& column) { return column.Hdr.left(kHeaderWidth).trimmed(); });
}

QByteArray dataLine(const DataColumns& columns, const DataItemSource& source) {
    return joinFields(columns, [&source](const DataColumn& column) {
        return FormatDataItem(column.Cal, source);
    });
}

} // namespace skyhold
