// SPDX-License-Identifier: GPL-3.0-or-later
#include "sensors/station_output.h"

#include "model/compass.h"
#include "platform/replacement_file.h"
#include "sensors/sensor_log.h"

#include <QLoggingCategory>

#include <algorithm>
#include <cmath>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kSoonMs = 500;

struct Row {
    QString name, unit, value;
};

QString decimal(const std::optional<double>& value, int decimals = 1) {
    return value ? QString::number(*value, 'f', decimals) : QString();
}

QString compassLabel(const std::optional<double>& degrees) {
    if (!degrees)
        return {};
    const auto point = std::lround(*degrees / 22.5) % 16;
    return QString::fromLatin1(kCompassPoints[static_cast<std::size_t>((point + 16) % 16)]);
}

double speedFactor(const QString& unit) {
    return unit == u"mph"   ? 1 / 1.609344
           : unit == u"m/s" ? 1 / 3.6
           : unit == u"kts" ? 1 / 1.852
                            : 1;
}

std::optional<double> times(const std::optional<double>& value, double factor) {
    return value ? std::optional(*value * factor) : std::nullopt;
}

} // namespace

std::optional<double> dewPointOf(double celsius, double humidityPercent) {
    if (!(humidityPercent > 0))
        return std::nullopt;
    constexpr double kA = 17.62;
    constexpr double kB = 243.12;
    const double gamma =
        std::log(std::min(humidityPercent, 100.0) / 100) + kA * celsius / (kB + celsius);
    return kB * gamma / (kA - gamma);
}

StationOutput::StationOutput(const QString& path, const SensorSettings& settings,
                             const Measurements& measurements)
    : path_(path)
    , settings_(settings)
    , measurements_(measurements) {
    ReplacementFile::removeLeftovers(path);
    soon_.setSingleShot(true);
    soon_.setInterval(kSoonMs);
    QObject::connect(&soon_, &QTimer::timeout, &soon_, [this] { write(); });
}

void StationOutput::changed() {
    if (const std::optional<double> wind = measurements_.value(Item::Wind))
        winds_.emplace_back(bootMs(), *wind);
    if (!soon_.isActive())
        soon_.start();
}

std::optional<double> StationOutput::gust() {
    const ItemSettings& own = settings_.items[Item::Gust];
    const std::optional<double> wind = measurements_.value(Item::Wind);
    const std::optional<double> measured = measurements_.value(Item::Gust);
    if (own.isSet())
        return measured && wind ? std::max(*measured, *wind) : measured;
    while (!winds_.empty() &&
           static_cast<double>(bootMs() - winds_.front().first) > kGustMinutes * 60'000)
        winds_.pop_front();
    if (!wind)
        return std::nullopt;
    return std::ranges::max(winds_, {}, &std::pair<std::int64_t, double>::second).second;
}

QByteArray StationOutput::text(const QDateTime& time) {
    const StationSettings& form = settings_.station;
    const bool csv = path_.contains(u".csv"_s);
    const auto has = [this](Item item) {
        return settings_.items[item].isSet();
    };
    const auto value = [this](Item item) {
        return measurements_.value(item);
    };
    const auto temperature = [&](std::optional<double> celsius) {
        if (celsius && form.fahrenheit)
            celsius = *celsius * 9 / 5 + 32;
        return decimal(celsius);
    };
    const QString degrees = (csv ? QString() : u"&deg;"_s) + (form.fahrenheit ? u"F"_s : u"C"_s);
    const auto speed = [&](const std::optional<double>& kmh) {
        return decimal(times(kmh, speedFactor(form.speed)));
    };
    std::vector<Row> rows{
        {u"Date"_s, {}, time.toString(form.monthFirst ? u"MM/dd/yyyy"_s : u"dd/MM/yyyy"_s)},
        {u"Time"_s, {}, time.toString(u"HH:mm:ss"_s)}};
    if (has(Item::Temperature))
        rows.push_back({u"OutTemp"_s, degrees, temperature(value(Item::Temperature))});
    if (has(Item::Wind))
        rows.push_back({u"WindSpeed"_s, form.speed, speed(value(Item::Wind))});
    if (has(Item::Wind) || has(Item::Gust))
        rows.push_back({u"Gust"_s, form.speed, speed(gust())});
    if (has(Item::Direction))
        rows.push_back({u"WindDirection"_s, {}, compassLabel(value(Item::Direction))});
    if (has(Item::RainToday)) {
        const std::optional<double> rain = value(Item::RainToday);
        const QString unit = form.inches ? u"in"_s : u"mm"_s;
        rows.push_back({u"RainDayMin"_s, unit, decimal(0)});
        rows.push_back({u"RainDayMax"_s, unit,
                        decimal(times(rain, form.inches ? 1 / 25.4 : 1), form.inches ? 2 : 1)});
    }
    if (has(Item::Humidity)) {
        const std::optional<double> humidity = value(Item::Humidity);
        rows.push_back({u"OutHumidity"_s, u"%"_s, decimal(humidity, 0)});
    }
    if (has(Item::DewPoint)) {
        rows.push_back({u"DewPoint"_s, degrees, temperature(value(Item::DewPoint))});
    } else if (has(Item::Temperature) && has(Item::Humidity)) {
        const std::optional<double> air = value(Item::Temperature);
        const std::optional<double> humidity = value(Item::Humidity);
        rows.push_back({u"DewPoint"_s, degrees,
                        temperature(air && humidity ? dewPointOf(*air, *humidity) : std::nullopt)});
    }
    if (has(Item::Pressure)) {
        rows.push_back({u"Barometer"_s, form.inches ? u"inHg"_s : u"hPa"_s,
                        decimal(times(value(Item::Pressure), form.inches ? 1 / 33.8638866667 : 1),
                                form.inches ? 2 : 1)});
    }
    QString text;
    for (const Row& row : rows)
        text += csv ? u"%1,%2,%3\r\n"_s.arg(row.name, row.unit, row.value)
                    : u"<tr><td>%1</td><td>%2</td><td>%3</td></tr>\n"_s.arg(row.name, row.unit,
                                                                            row.value);
    if (!csv)
        text =
            u"<html><head><meta charset=\"utf-8\"><title>Station</title></head><body>\n<table>\n"_s +
            text + u"</table>\n</body></html>\n"_s;
    return text.toUtf8();
}

void StationOutput::write() {
    ReplacementFile file(path_);
    const bool written =
        file.isOpen() && file.write(text(QDateTime::currentDateTime())) && file.commit();
    if (!written && !failed_)
        qCWarning(sensorLog).noquote() << path_ << "cannot be written";
    failed_ = !written;
}

} // namespace skyhold
