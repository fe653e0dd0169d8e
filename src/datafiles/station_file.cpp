// SPDX-License-Identifier: GPL-3.0-or-later
#include "datafiles/station_file.h"

#include "datafiles/station_number.h"
#include "datafiles/station_table.h"
#include "platform/files.h"
#include "platform/text_encoding.h"

#include <algorithm>
#include <cmath>

namespace skyhold {

namespace {

// Longer cells are shown, and their unit recognised, by this many characters.
constexpr qsizetype kLongestShown = 255;

StationRead fromReadResult(ReadResult result) {
    switch (result) {
    case ReadResult::Ok:
        return StationRead::Valid;
    case ReadResult::Missing:
        return StationRead::Missing;
    case ReadResult::NotAFile:
        return StationRead::NotAFile;
    case ReadResult::TooLarge:
        return StationRead::TooLarge;
    case ReadResult::Unreadable:
        break;
    }
    return StationRead::Unreadable;
}

// Fills the entries of the station value table, in index order.
class EntryFiller {
  public:
    EntryFiller(const StationTable& table, const UnitControls& units, const NumberForms& forms,
                StationFileMemory& memory, StationObservation& seen)
        : table_(table)
        , units_(units)
        , forms_(forms)
        , memory_(memory)
        , seen_(seen) {}

    void fillAll() {
        fillDate();
        fillTime();
        showNumber(StationEntry::Temperature, seen_.numbers[Quantity::Temperature]);
        showNumber(StationEntry::WindSpeed, seen_.numbers[Quantity::Wind]);
        showNumber(StationEntry::Gust, seen_.numbers[Quantity::Gust]);
        showOneDecimal(StationEntry::WindDirection, seen_.windDirection);
        seen_.dailyRain = dailyRain();
        showNumber(StationEntry::DailyRain, seen_.dailyRain);
        showNumber(StationEntry::Humidity, seen_.numbers[Quantity::Humidity]);
        showNumber(StationEntry::DewPoint, seen_.numbers[Quantity::Dew]);
        seen_.pressure = pressure();
        showOneDecimal(StationEntry::Pressure, seen_.pressure);
        fillUnit(StationEntry::TemperatureUnit, u"OutTemp");
        fillUnit(StationEntry::SpeedUnit, u"WindSpeed");
        fillUnit(StationEntry::PressureUnit, u"Barometer");
        seen_.tableFilled = true;
    }

  private:
    QStringView value(QStringView name) const {
        return table_.cell(kValueCell, FindRow(table_, name));
    }

    double dailyRain() const {
        const double rain = std::abs(parseLocaleNumber(value(u"RainDayMin"), forms_) -
                                     parseLocaleNumber(value(u"RainDayMax"), forms_));
        return std::isfinite(rain) ? rain : 0;
    }

    // A station without barometer has a pressure of 0.
    std::optional<double> pressure() const {
        if (FindRow(table_, u"Barometer") == 0)
            return 0;
        return ParseStationNumber(value(u"Barometer"), forms_);
    }

    void show(StationEntry entry, QStringView text) {
        seen_.texts[static_cast<std::size_t>(entry)] =
            text.first(std::min(text.size(), kLongestShown)).toString();
    }

    void showNumber(StationEntry entry, std::optional<double> number) {
        show(entry, number ? numberText(*number, forms_) : QString());
    }

    void showOneDecimal(StationEntry entry, std::optional<double> number) {
        show(entry, number ? formatNumber(*number, u"0.0", forms_) : QString());
    }

    void fillUnit(StationEntry entry, QStringView name) {
        show(entry, table_.cell(kUnitCell, FindRow(table_, name)));
    }

    // A date that cannot be read leaves both the entry and the station's time as they were.
    void fillDate() {
        const int dateFormat = units_.DateFormat.Index;
        date_ = ParseStationDate(value(u"Date"), dateFormat);
        if (!date_)
            return;
        memory_.recordTime = QDateTime(*date_, QTime(0, 0));
        show(StationEntry::Date,
             formatDate(memory_.recordTime, dateFormat == 1 ? u"mm/dd" : u"dd/mm"));
    }

    void fillTime() {
        const QStringView cell = value(u"Time");
        const std::optional<QTime> time = parseStationTime(cell);
        if (!time) {
            show(StationEntry::Time, cell);
            return;
        }
        show(StationEntry::Time, time->toString(QStringLiteral("HH:mm:ss")));
        if (date_)
            memory_.recordTime = QDateTime(*date_, *time);
    }

    const StationTable& table_;
    const UnitControls& units_;
    const NumberForms& forms_;
    StationFileMemory& memory_;
    StationObservation& seen_;
    std::optional<QDate> date_; // of this read
};

void takeNumbers(const StationValues& values, StationObservation& seen) {
    for (const Quantity quantity : kStationQuantities)
        seen.numbers[quantity] = values.values[quantity].number;
    seen.windDirection = values.direction.number;
    seen.valuesMissing = values.anyMissing();
}

// True when a CSV text stops too early, as far as can be seen. Nothing is remembered yet for the
// first read of a session: what it lacks counts as torn off until a second one lacks it, too. What
// follows the records, a footer say, may break off as it likes.
bool tornCsv(const QString& text, const StationTable& table, StationFileMemory& memory) {
    const bool first = !memory.anyRead;
    const bool lineEnd = text.endsWith(u'\n') || text.endsWith(u'\r');
    const bool lostLineEnd = memory.endedInLineEnd && !lineEnd;
    memory.endedInLineEnd = memory.endedInLineEnd || lineEnd;
    return lostLineEnd || table.openQuote() || (table.cutShort() && mayHaveLostValue(table)) ||
           (first && !(memory.names.all() && lineEnd));
}

// The text up to the mark that older programs end a text file with.
QString beforeEndMark(QString text) {
    const qsizetype mark = text.indexOf(QChar(0x1A));
    if (mark >= 0)
        text.truncate(mark);
    return text;
}

} // namespace

StationRead ReadStationFile(const StationFileControls& controls, const UnitControls& units,
                            const NumberForms& forms, const QDateTime& modified,
                            StationFileMemory& memory, StationObservation& seen) {
    const QString path = controls.HTMFile.Caption;
    const std::optional<QString> file = findFile(path);
    if (!file)
        return StationRead::Missing;
    const FileContents contents = readFile(*file, kStationFileLimit);
    if (contents.result != ReadResult::Ok)
        return fromReadResult(contents.result);
    memory.lastFileTime = fileTimeText(modified);
    if (contents.bytes.contains('\0'))
        return StationRead::NotText;

    const bool csv = path.contains(QStringLiteral(".csv"));
    const QString decoded = decodeText(contents.bytes);
    const QString text = csv ? beforeEndMark(decoded) : decoded;
    const StationTable table = csv ? ParseCsvTable(text) : ParseHtmlTable(text);
    const StationNames names = namesIn(table);
    memory.names = memory.names | names;
    takeNumbers(stationValues(table, memory.names, units, forms), seen);
    EntryFiller(table, units, forms, memory, seen).fillAll();

    const bool torn = csv && tornCsv(text, table, memory);
    if (!names.any())
        return StationRead::NoReadings;
    memory.anyRead = true;
    if (torn)
        return StationRead::Incomplete;
    return seen.valuesMissing ? StationRead::ValueMissing : StationRead::Valid;
}

StationObservation observeStation(const StationFileControls& controls, const UnitControls& units,
                                  const NumberForms& forms, const Clock& clock,
                                  StationFileMemory& memory) {
    StationObservation seen;
    seen.written = stationFileTime(controls.HTMFile.Caption);
    const std::int64_t nowMs = clock.MsClock();
    const StationFileVerdict verdict = judgeStationFile(
        seen.written, memory.lastFileTime, memory.recordTime, clock.now(),
        controls.TimeoutREAD.Value, static_cast<double>(nowMs - memory.rewrittenMs) / 1000);
    seen.file = verdict.state;
    seen.ageSeconds = verdict.ageSeconds;
    seen.timeoutSeconds = controls.TimeoutREAD.Value * 60;
    if (verdict.state == StationFileState::Refreshed)
        memory.rewrittenMs = nowMs;

    if (verdict.state == StationFileState::Old) {
        seen.state = SourceState::Old;
    } else if (verdict.state != StationFileState::Missing) {
        const StationRead read =
            ReadStationFile(controls, units, forms, seen.written, memory, seen);
        const bool mayBeJudged = read == StationRead::Valid || read == StationRead::ValueMissing;
        seen.state = mayBeJudged ? SourceState::Ok : SourceState::Unusable;
        seen.detail = stationReadStatus(read);
    }
    seen.recordTime = memory.recordTime;
    return seen;
}

QString stationReadStatus(StationRead read) {
    switch (read) {
    case StationRead::Valid:
        return {};
    case StationRead::Missing:
        return QStringLiteral("Weather Station Data - file not available");
    case StationRead::NotAFile:
    case StationRead::Unreadable:
        return QStringLiteral("Weather Station Data - not a readable file");
    case StationRead::TooLarge:
        return QStringLiteral("Weather Station Data - file too large (over 16 MB)");
    case StationRead::NotText:
        return QStringLiteral("Weather Station Data - not a text file");
    case StationRead::NoReadings:
        return QStringLiteral("Weather Station Data - no readings in file");
    case StationRead::ValueMissing:
        return QStringLiteral("Weather Station Data - value missing or not a number");
    case StationRead::Incomplete:
        break;
    }
    return QStringLiteral("Weather Station Data - file not complete");
}

} // namespace skyhold
