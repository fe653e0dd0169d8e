// SPDX-License-Identifier: GPL-3.0-or-later
// Alpaca's ObservingConditions: what is measured.
#include "gateway/alpaca_members.h"
#include "gateway/readings.h"

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;
using enum AlpacaType;

enum class Kind : std::uint8_t { Absent, Temperature, Speed, Plain, Direction, Pressure };

struct SensorRow {
    const char* name; // as Alpaca has it
    Kind kind;
    const char* reading;     // of the document
    const char* description; //
};

constexpr SensorRow kSensors[] = {
    {"CloudCover", Kind::Absent, "", ""},
    {"DewPoint", Kind::Temperature, "dew_point", "The weather station's dew point"},
    {"Humidity", Kind::Plain, "humidity", "The weather station's hygrometer"},
    {"Pressure", Kind::Pressure, "pressure", "The weather station's barometer, at the site"},
    {"RainRate", Kind::Absent, "", ""},
    {"SkyBrightness", Kind::Absent, "", ""},
    {"SkyQuality", Kind::Absent, "", ""},
    {"SkyTemperature", Kind::Temperature, "cloud", "The cloud sensor's sky temperature"},
    {"StarFWHM", Kind::Absent, "", ""},
    {"Temperature", Kind::Temperature, "temperature", "The weather station's thermometer"},
    {"WindDirection", Kind::Direction, "wind_direction", "The weather station's vane"},
    {"WindGust", Kind::Speed, "gust", "The weather station's gust"},
    {"WindSpeed", Kind::Speed, "wind", "The weather station's anemometer"},
};

const SensorRow* sensorOf(const QByteArray& name) {
    for (const SensorRow& row : kSensors) {
        if (name.compare(row.name, Qt::CaseInsensitive) == 0)
            return &row;
    }
    return nullptr;
}

bool implemented(const SensorRow& row, const AlpacaServer& server) {
    return row.kind != Kind::Absent && (row.kind != Kind::Pressure || server.elevation);
}

std::optional<double> valueOf(const SensorRow& row, const AlpacaCall& call) {
    if (!call.view.live() || !implemented(row, call.server))
        return std::nullopt;
    const QJsonObject& document = call.view.snapshot->document;
    switch (row.kind) {
    case Kind::Temperature:
        return temperatureOf(document, row.reading);
    case Kind::Speed:
        return speedOf(document, row.reading);
    case Kind::Plain:
        return plainOf(document, row.reading);
    case Kind::Direction:
        return directionOf(document);
    case Kind::Pressure: {
        const std::optional<double> sea = seaPressureOf(document);
        const std::optional<double> celsius = temperatureOf(document, "temperature");
        if (!sea || !celsius)
            return std::nullopt;
        return pressureAt(*sea, *call.server.elevation, *celsius);
    }
    case Kind::Absent:
        break;
    }
    return std::nullopt;
}

AlpacaResult notImplemented(const SensorRow& row) {
    return alpacaError(AlpacaError::NotImplemented,
                       row.kind == Kind::Pressure
                           ? u"Pressure needs the elevation of the site, which is not set"_s
                           : u"%1 is not measured"_s.arg(QLatin1String(row.name)));
}

template <std::size_t index>
AlpacaOutcome measured(const AlpacaCall& call) {
    const SensorRow& row = kSensors[index];
    if (!implemented(row, call.server))
        return notImplemented(row);
    if (const std::optional<double> value = valueOf(row, call))
        return alpacaNumber(*value);
    return alpacaError(
        AlpacaError::InvalidOperation,
        u"%1 is not known now%2"_s.arg(QLatin1String(row.name),
                                       call.view.live() ? QString() : u": "_s + call.view.fault));
}

AlpacaOutcome averagePeriod(const AlpacaCall&) {
    return alpacaNumber(0);
}

AlpacaOutcome setAveragePeriod(const AlpacaCall& call) {
    if (call.number("AveragePeriod") == 0)
        return AlpacaResult();
    return alpacaError(AlpacaError::InvalidValue,
                       u"AveragePeriod %1 is not 0, the only one: values are not averaged"_s.arg(
                           call.number("AveragePeriod")));
}

AlpacaOutcome refresh(const AlpacaCall& call) {
    if (call.view.live())
        return AlpacaResult(); // what is known is as new as the last cycle
    return alpacaError(AlpacaError::InvalidOperation, call.view.fault);
}

AlpacaResult noSensor(const AlpacaCall& call) {
    QStringList names;
    for (const SensorRow& row : kSensors)
        names += QLatin1String(row.name);
    return alpacaError(
        AlpacaError::InvalidValue,
        u"SensorName \"%1\" is none of %2"_s.arg(
            QString::fromUtf8(call.text("SensorName").left(40)), names.join(u", "_s)));
}

AlpacaOutcome sensorDescription(const AlpacaCall& call) {
    const SensorRow* row = sensorOf(call.text("SensorName"));
    if (!row)
        return noSensor(call);
    if (!implemented(*row, call.server))
        return notImplemented(*row);
    return alpacaText(QString::fromUtf8(row->description));
}

// Of all together (no name) that of the latest.
AlpacaOutcome timeSinceLastUpdate(const AlpacaCall& call) {
    const QByteArray name = call.text("SensorName");
    const SensorRow* row = sensorOf(name);
    if (!name.isEmpty() && !row)
        return noSensor(call);
    if (row && !implemented(*row, call.server))
        return notImplemented(*row);
    std::optional<double> age;
    if (call.view.live()) {
        const QJsonObject& document = call.view.snapshot->document;
        for (const char* source : {"sensor", "station"}) {
            const bool wanted =
                !row || fromSensor(row->reading) == (*source == 's' && source[1] == 'e');
            const std::optional<double> its = ageOf(document, source);
            if (wanted && its && (!age || *its < *age))
                age = its;
        }
    }
    if (!age)
        return alpacaError(AlpacaError::InvalidOperation, u"It is not known when it was read"_s);
    return alpacaNumber(*age + static_cast<double>(call.view.ageMs) / 1000);
}

constexpr AlpacaMember kMembers[] = {
    {"averageperiod", false, Number, averagePeriod},
    {"averageperiod", true, None, setAveragePeriod, {{"AveragePeriod", Number}}},
    {"cloudcover", false, Number, measured<0>},
    {"dewpoint", false, Number, measured<1>},
    {"humidity", false, Number, measured<2>},
    {"pressure", false, Number, measured<3>},
    {"rainrate", false, Number, measured<4>},
    {"skybrightness", false, Number, measured<5>},
    {"skyquality", false, Number, measured<6>},
    {"skytemperature", false, Number, measured<7>},
    {"starfwhm", false, Number, measured<8>},
    {"temperature", false, Number, measured<9>},
    {"winddirection", false, Number, measured<10>},
    {"windgust", false, Number, measured<11>},
    {"windspeed", false, Number, measured<12>},
    {"refresh", true, None, refresh},
    {"sensordescription", false, Text, sensorDescription, {{"SensorName"}}},
    {"timesincelastupdate", false, Number, timeSinceLastUpdate, {{"SensorName"}}},
};

} // namespace

std::span<const AlpacaMember> conditionsMembers() {
    return kMembers;
}

AlpacaState conditionsState(const AlpacaCall& call) {
    AlpacaState state;
    for (const SensorRow& row : kSensors) {
        if (const std::optional<double> value = valueOf(row, call))
            state.emplaceBack(row.name, alpacaNumber(*value).value);
    }
    return state;
}

} // namespace skyhold
