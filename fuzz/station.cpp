// SPDX-License-Identifier: GPL-3.0-or-later
// What a station writes in its cells, and its file as a whole.
#include "target.h"

#include "datafiles/station_file.h"
#include "datafiles/station_number.h"
#include "judge/safety.h"
#include "records/records.h"
#include "settings/key_table.h"
#include "units/cardinal.h"
#include "units/detection.h"

#include <QFile>
#include <QTemporaryDir>

#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace skyhold::fuzz {

namespace {

const NumberForms kForms[]{
    {u"."_s, u","_s}, {u","_s, u"."_s}, {u","_s, u"\u202f"_s}, {u"\u066b"_s, u"\u066c"_s}};

void requireSoundNumber(double number, const NumberForms& forms) {
    require(std::isfinite(number), "a number that was read is finite");
    // The largest number rounds up to none of 15 digits.
    if (std::abs(number) > 1.79e308)
        return;
    const QString shown = numberText(number, forms);
    const std::optional<double> again = numberFromText(shown, forms);
    require(again && std::abs(*again - number) <= 1e-14 * std::abs(number),
            "a shown number reads as itself");
    const QString formatted = formatNumber(number, u"0.0", forms);
    require(formatted.size() < 320, "a formatted number has an end");
    const std::optional<double> rounded = numberFromText(formatted, forms);
    require(rounded && std::abs(*rounded - number) <= 0.05 + 1e-9 + 1e-15 * std::abs(number),
            "a formatted number is the number, rounded");
}

// As they are before the user changes anything.
const UnitControls& usualUnits() {
    static Records records;
    static const bool loaded = [] {
        for (const KeyRow& row : keyTable(records))
            row.load(row.defaultText, {});
        return true;
    }();
    require(loaded, "the defaults load");
    return records.units;
}

void stationValue(QByteArrayView bytes) {
    const UnitControls& units = usualUnits();
    Input input(bytes);
    const std::uint8_t choice = input.byte();
    const NumberForms& forms = kForms[choice % std::size(kForms)];
    const QString text = QString::fromUtf8(input.rest());

    const std::optional<double> number = ParseStationNumber(text, forms);
    requireSoundNumber(number.value_or(0), forms);
    require(!number || !text.contains(forms.thousand) || forms.thousand == u".",
            "a number has no separators of thousands");
    requireSoundNumber(parseLocaleNumber(text, forms), forms);
    require(ParseStationNumber(u' ' + text + u'\t', forms) == ParseStationNumber(text, forms),
            "blanks around a number do not matter");
    const double leading = leadingNumber(text);
    require(std::isfinite(leading), "a leading number is finite");

    for (const int format : {0, 1, -1}) {
        if (const auto date = ParseStationDate(text, format)) {
            require(date->isValid() && date->year() >= 100 && date->year() <= 9999,
                    "a date is one of the calendar");
            // Written in full it reads as itself.
            const QString written =
                formatDate(date->startOfDay(), format == 1 ? u"mm/dd/yyyy" : u"dd/mm/yyyy");
            require(ParseStationDate(written, format) == date, "a date reads as itself");
        }
    }
    if (const auto time = parseStationTime(text)) {
        require(time->isValid(), "a time is one of the day");
        require(parseStationTime(time->toString(u"HH:mm:ss"_s)) == time, "a time reads as itself");
    }
    if (const auto degrees = CardinalToDegrees(text, units.Cardinal))
        require(*degrees >= 0 && *degrees < 360 && std::fmod(*degrees, 22.5) == 0,
                "a label is one of sixteen");
    const TemperatureCode degrees = DetectTemperatureUnit(text, units);
    require(degrees != TemperatureCode::Celsius || !units.StringDC.isEmpty(),
            "Celsius is recognised by its pieces alone");
    DetectSpeedUnit(text, units, SpeedCode::MetresPerSecond);
}

void stationFile(QByteArrayView bytes) {
    static const QTemporaryDir folder;
    const UnitControls& units = usualUnits();
    Input input(bytes);
    const std::uint8_t choice = input.byte();
    const NumberForms& forms = kForms[choice / 2 % std::size(kForms)];
    StationFileControls controls;
    controls.HTMFile.Caption = folder.filePath(choice % 2 ? u"station.csv"_s : u"station.htm"_s);
    QFile file(controls.HTMFile.Caption.value());
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return broken("the target can write its file");
    file.write(input.rest().toByteArray());
    file.close();

    StationFileMemory memory;
    StationObservation seen;
    const auto read = [&] {
        seen = {};
        return ReadStationFile(controls, units, forms, QDateTime::currentDateTime(), memory, seen);
    };
    const auto shownValues = [&seen] {
        QStringList values;
        for (const std::optional<QString>& text : seen.texts)
            values << text.value_or(QString());
        return values;
    };
    const auto mayBeJudged = [](StationRead judged) {
        return judged == StationRead::Valid || judged == StationRead::ValueMissing;
    };
    const StationRead result = read();
    require(result != StationRead::Missing && result != StationRead::Unreadable &&
                result != StationRead::NotAFile && result != StationRead::TooLarge,
            "a file that is there is read");
    const QStringList shown = shownValues();
    require(stationReadStatus(result).isEmpty() == (result == StationRead::Valid),
            "what is not valid is said");
    if (result == StationRead::NotText) {
        require(shown.join(QString()).isEmpty(), "nothing is taken from what is no text");
        return;
    }
    // What the first read of a session lacks may be torn off; a second one shows that.
    const StationRead second = read();
    require(second == StationRead::Valid || result != StationRead::Valid,
            "a valid file stays valid");
    require(mayBeJudged(second) || !mayBeJudged(result), "what may be judged once may be again");
    require(read() == second && shownValues() == shown, "the same file reads the same");
    require(std::isfinite(seen.pressure.value_or(0)), "the pressure is finite");
    require(!memory.recordTime.isNull() || shown[0].isEmpty(),
            "a date that is shown is the station's");
    for (const QString& text : shown)
        require(text.size() <= 255, "a shown value has an end");

    constexpr std::array limits{10.0, 20.0, 30.0};
    bool blank = false;
    for (const int entry : {2, 3, 4, 5, 6, 7, 8, 9}) {
        const std::optional<double> number = numberFromText(shown[entry], forms);
        require(number.has_value() || shown[entry].isEmpty(), "a shown value is a number");
        blank = blank || (!number && entry != 5 && entry != 9);
        if (!number)
            continue;
        const std::int32_t level = bandLevel(*number, limits);
        require(level >= 0 && level <= 3, "a level is one of four");
        require(level == 0 || *number <= 10.0 * level, "a level's limit is not below the value");
    }
    require(second != StationRead::Valid || !blank, "a valid file lacks no value");
    const double degrees = numberFromText(shown[5], forms).value_or(0);
    require(degrees >= 0 && degrees < 360, "a direction is on the compass");
}

} // namespace

const Target kStationValue{"station_value", stationValue};
const Target kStationFile{"station_file", stationFile};

} // namespace skyhold::fuzz
