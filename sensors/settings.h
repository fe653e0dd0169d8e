// SPDX-License-Identifier: GPL-3.0-or-later
// What the sensor program is set up for.
#pragma once

#include "sensors/items.h"
#include "sensors/levels.h"

#include <QMap>
#include <QStringList>

#include <vector>

namespace skyhold {

enum class SourceKind { File, Command, Indi, Alpaca, Mqtt };

struct SourceSettings {
    QString name;
    SourceKind kind = SourceKind::File;
    QMap<QString, QString> keys; // every key of the kind, by default where it is not set

    QString text(const QString& key) const { return keys.value(key); }
    double number(const QString& key) const { return keys.value(key).toDouble(); }
    bool yes(const QString& key) const { return keys.value(key) == QStringLiteral("yes"); }
};

// A value of a source: "observatory: Weather Simulator.WEATHER_PARAMETERS.WEATHER_TEMPERATURE".
struct ValueAddress {
    QString source;
    QString address;

    bool isSet() const { return !source.isEmpty(); }
    bool operator==(const ValueAddress&) const = default;
};

struct ItemSettings {
    ValueAddress value;
    UnitStep unit;
    double scale = 1, offset = 0; // before the unit
    double maxAgeSeconds = 30;
    ValueAddress levelFrom; // not set: the value
    LevelRule levels;
    bool differenceToAir = false; // limits are of the value less the air temperature

    bool isSet() const { return value.isSet() || levelFrom.isSet(); }
};

enum class SwitchKind { None, Indi, Alpaca, Command };

struct SwitchSettings {
    SwitchKind kind = SwitchKind::None;
    QMap<QString, QString> keys;
    double closeAfterSeconds = 180; // without a word from the monitor; 0: never

    QString text(const QString& key) const { return keys.value(key); }
};

struct StationSettings {
    bool fahrenheit = false;
    QString speed = QStringLiteral("km/h"); // or "mph", "m/s", "kts"
    bool inches = false;                    // rain, pressure in inHg
    bool monthFirst = false;
};

struct SensorSettings {
    bool master = false;
    std::vector<SourceSettings> sources;
    PerItem<ItemSettings> items;
    SwitchSettings roof;
    StationSettings station;

    const SourceSettings* source(const QString& name) const;
    bool anyOfSensor() const; // anything that the monitor reads from the sensor program
};

// The settings of a text. `faults` gets a line for everything that is not understood or does not
// fit together; with any, nothing must be served.
SensorSettings sensorSettings(QByteArrayView text, QStringList& faults);
// What is allowed but hardly meant, "nothing measures rain: ...".
QStringList settingsRemarks(const SensorSettings& settings);

// ~/.config/Kiv/skyhold-sensor.conf
QString defaultSettingsPath();

} // namespace skyhold
