// SPDX-License-Identifier: GPL-3.0-or-later
#include "sensors/sensor_program.h"

#include "sensors/alpaca.h"
#include "sensors/indi_source.h"
#include "sensors/mqtt_source.h"
#include "sensors/sensor_log.h"
#include "sensors/text_sources.h"

#include <QCoreApplication>
#include <QDeadlineTimer>

namespace skyhold {

Q_LOGGING_CATEGORY(sensorLog, "skyhold.sensor")

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kTickMs = 1000;
constexpr int kEndMs = 5000;

void logLine(const QString& text) {
    qCInfo(sensorLog).noquote() << text;
}

std::unique_ptr<ValueSource> makeSource(const SourceSettings& settings, SourceReadings& readings) {
    switch (settings.kind) {
    case SourceKind::File:
        return std::make_unique<FileSource>(settings, readings);
    case SourceKind::Command:
        return std::make_unique<CommandSource>(settings, readings);
    case SourceKind::Indi:
        return std::make_unique<IndiSource>(settings, readings);
    case SourceKind::Alpaca:
        return std::make_unique<AlpacaSource>(settings, readings);
    case SourceKind::Mqtt:
        return std::make_unique<MqttSource>(settings, readings);
    }
    return nullptr;
}

} // namespace

SensorProgram::SensorProgram(const SensorSettings& settings)
    : settings_(settings)
    , measurements_(settings)
    , sources_([&] {
        std::vector<Source> sources;
        for (const SourceSettings& source : settings.sources)
            sources.push_back({source.name, makeSource(source, measurements_.of(source.name))});
        return sources;
    }())
    , driver_([&]() -> std::unique_ptr<SwitchDriver> {
        IndiSource* indi = nullptr;
        for (const Source& source : sources_) {
            if (source.name == settings.roof.text(u"source"_s))
                indi = dynamic_cast<IndiSource*>(source.source.get());
        }
        return makeSwitchDriver(settings.roof, indi);
    }())
    , roof_(driver_ ? std::make_unique<RoofSwitch>(*driver_, settings.roof.closeAfterSeconds,
                                                   bootMs, logLine)
                    : nullptr)
    , sensor_(settings, measurements_, roof_.get(), logLine) {
    for (const Source& source : sources_) {
        SourceReadings& readings = measurements_.of(source.name);
        readings.TroubleChanged = [&readings, name = source.name] {
            logLine(name + u": "_s +
                    (readings.trouble().isEmpty() ? u"works"_s : readings.trouble()));
        };
    }
    measurements_.Changed = [this] {
        if (station_)
            station_->changed();
    };
    QObject::connect(&tick_, &QTimer::timeout, &tick_, [this] {
        if (roof_)
            roof_->tick();
    });
    QObject::connect(&keep_, &QTimer::timeout, &keep_, [this] {
        sensor_.keepHistory();
        cycleDone();
    });
}

SensorProgram::~SensorProgram() = default;

void SensorProgram::start() {
    for (const Source& source : sources_)
        source.source->start();
    if (driver_)
        driver_->start();
    tick_.start(kTickMs);
    keep_.start(sensor_.readCycle() * 1000);
}

void SensorProgram::end() {
    if (!roof_)
        return;
    roof_->end();
    QDeadlineTimer limit(kEndMs);
    while (!driver_->settled() && !limit.hasExpired())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents,
                                        static_cast<int>(limit.remainingTime()));
}

void SensorProgram::writeStation(const QString& path) {
    station_ = std::make_unique<StationOutput>(path, settings_, measurements_);
}

QStringList SensorProgram::sourceLines() {
    QStringList lines;
    for (const Source& source : sources_) {
        const QString& trouble = measurements_.of(source.name).trouble();
        lines.append(u"%1: %2"_s.arg(source.name, trouble.isEmpty() ? u"works"_s : trouble));
    }
    return lines;
}

QStringList SensorProgram::itemLines() const {
    QStringList lines;
    for (const ItemRow& row : kItems) {
        const ItemSettings& item = settings_.items[row.item];
        if (!item.isSet())
            continue;
        const std::optional<double> value = measurements_.value(row.item);
        const std::optional<double> age = measurements_.ageSeconds(row.item);
        const std::optional<std::int32_t> level = measurements_.level(row.item);
        QString number = u"-"_s;
        if (value)
            number = QString::number(*value, 'g', 6) + u' ' + unitOf(row.measure);
        else if (item.value.isSet())
            number = u"missing"_s;
        const QString levelText = !row.hasLevels ? QString()
                                  : level        ? u"level %1"_s.arg(*level)
                                                 : u"no level"_s;
        lines.append(u"%1 %2 %3 %4"_s.arg(QString::fromUtf16(row.name), -19)
                         .arg(number.trimmed(), -12)
                         .arg(levelText, -8)
                         .arg(age ? u"%1 s old"_s.arg(*age, 0, 'f', 0) : u"never seen"_s));
    }
    return lines;
}

QString SensorProgram::switchLine() const {
    if (!roof_)
        return {};
    const RoofState state = roof_->state();
    const QString shown = state == RoofState::Opened   ? u"open"_s
                          : state == RoofState::Closed ? u"closed"_s
                                                       : u"unknown"_s;
    const QString trouble = driver_->trouble();
    return u"%1 %2"_s.arg(u"switch"_s, -19).arg(shown) +
           (trouble.isEmpty() ? QString() : u" ("_s + trouble + u')');
}

} // namespace skyhold
