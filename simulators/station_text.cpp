// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulators/station_text.h"

#include "platform/text_forms.h"

#include <array>
#include <cmath>
#include <functional>
#include <vector>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

QString decimal(double value) {
    return QString::number(value, 'f', 1);
}

QString compassLabel(double degrees) {
    static const std::array labels{u"N"_s,  u"NNE"_s, u"NE"_s, u"ENE"_s, u"E"_s,  u"ESE"_s,
                                   u"SE"_s, u"SSE"_s, u"S"_s,  u"SSW"_s, u"SW"_s, u"WSW"_s,
                                   u"W"_s,  u"WNW"_s, u"NW"_s, u"NNW"_s};
    return labels[static_cast<std::size_t>(std::lround(degrees / 22.5)) % labels.size()];
}

// A logged text in the form of `convert`; what is not a number stays as it is.
QString converted(const QString& logged, const std::function<QString(double)>& convert) {
    bool number = false;
    const double value = logged.toDouble(&number);
    return number && std::isfinite(value) ? convert(value) : logged;
}

struct Row {
    QString name;
    QString unit;
    QString value;
};

QString speedUnitText(QChar unit) {
    switch (unit.unicode()) {
    case u'M':
        return u"mph"_s;
    case u'm':
        return u"m/s"_s;
    case u'k':
        return u"kts"_s;
    default:
        return u"km/h"_s;
    }
}

std::vector<Row> rowsOf(const StationCells& cells, const QDateTime& time, const StationForm& form) {
    const QString degrees = (form.csv ? u""_s : u"&deg;"_s) + form.temperatureUnit;
    const QString speed = speedUnitText(form.speedUnit);
    return {
        {u"Date"_s, {}, formatDate(time, form.monthFirst ? u"mm/dd/yyyy" : u"dd/mm/yyyy")},
        {u"Time"_s, {}, formatDate(time, u"hh:mm:ss")},
        {u"OutTemp"_s, degrees, cells.temperature},
        {u"WindSpeed"_s, speed, cells.wind},
        {u"Gust"_s, speed, cells.gust},
        {u"WindDirection"_s, {}, cells.direction},
        {u"RainDayMin"_s, u"mm"_s, cells.rainMin},
        {u"RainDayMax"_s, u"mm"_s, cells.rainMax},
        {u"OutHumidity"_s, u"%"_s, cells.humidity},
        {u"DewPoint"_s, degrees, cells.dewPoint},
        {u"Barometer"_s, u"hPa"_s, cells.barometer},
    };
}

} // namespace

StationCells cellsOf(const Weather& weather, const StationForm& form) {
    StationCells cells;
    cells.temperature = decimal(temperatureIn(form.temperatureUnit, weather.temperature));
    cells.wind = decimal(speedIn(form.speedUnit, weather.wind));
    cells.gust = decimal(speedIn(form.speedUnit, weather.gust));
    cells.direction = compassLabel(weather.direction);
    cells.rainMin = decimal(0);
    cells.rainMax = decimal(weather.rainToday);
    cells.humidity = QString::number(std::lround(weather.humidity)) + u'%';
    cells.dewPoint = decimal(temperatureIn(form.temperatureUnit, weather.dewPoint));
    cells.barometer = decimal(weather.pressure);
    return cells;
}

std::optional<StationCells> cellsOf(const ReplayLog& log, const QDateTime& time,
                                    const StationForm& form) {
    const LogRecord* record = log.inForce(time);
    if (record == nullptr)
        return std::nullopt;
    const auto temperature = [&](double fahrenheit) {
        return decimal(temperatureIn(form.temperatureUnit, (fahrenheit - 32) * 5 / 9));
    };
    const auto speed = [&](double mph) {
        return decimal(speedIn(form.speedUnit, mph * 1.609344));
    };
    StationCells cells;
    cells.temperature = converted(record->temperatureF, temperature);
    cells.wind = converted(record->windMph, speed);
    cells.gust = converted(record->gustMph, speed);
    cells.direction = converted(record->direction, [&](double degrees) {
        return degrees >= 0 && degrees <= 360 ? compassLabel(degrees) : record->direction;
    });
    cells.rainMin = decimal(0);
    cells.rainMax = converted(record->precipitationIn,
                              [&](double) { return decimal(25.4 * log.rainOfDay(time)); });
    if (!record->humidity.isEmpty())
        cells.humidity = converted(record->humidity, decimal) + u'%';
    cells.dewPoint = converted(record->dewPointF, temperature);
    cells.barometer = converted(record->pressure, decimal);
    return cells;
}

QByteArray stationText(const StationCells& cells, const QDateTime& time, const StationForm& form) {
    QString text;
    const std::vector<Row> rows = rowsOf(cells, time, form);
    if (form.csv) {
        for (const Row& row : rows)
            text += row.name + u',' + row.unit + u',' + row.value + u"\r\n"_s;
        return text.toUtf8();
    }
    text = u"<html><head><title>Station</title></head><body>\r\n<table border=1>\r\n"
           "<tr><th>Name</th><th>Unit</th><th>Value</th></tr>\r\n"_s;
    for (const Row& row : rows) {
        text += u"<tr><td>%1</td><td>%2</td><td align=right>%3</td></tr>\r\n"_s.arg(
            row.name, row.unit, row.value);
    }
    text += u"</table>\r\n</body></html>\r\n"_s;
    return text.toUtf8();
}

} // namespace skyhold
