#include "datafiles/station_file.h"

#include "datafiles/station_number.h"
#include "datafiles/station_table.h"
#include "platform/files.h"
#include "platform/text_encoding.h"
#include "units/cardinal.h"

#include <algorithm>
#include <cmath>

namespace skyhold {

namespace {

constexpr int kUnitCell = 2;
constexpr int kValueCell = 3;

// Longer cells are shown, and their unit recognised, by this many characters.
constexpr qsizetype kLongestShown = 255;

// The names without which a quantity would be judged by a 0 that nobody measured. All but the
// last have a number as value.
constexpr std::array<QStringView, 6> kJudgedNames{u"WindSpeed",   u"Gust",     u"OutTemp",
                                                  u"OutHumidity", u"DewPoint", u"WindDirection"};

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

QString withoutCharacters(QStringView text, const QString& characters) {
    QString rest;
    rest.reserve(text.size());
    for (const QChar c : text) {
        if (!characters.contains(c))
            rest += c;
    }
    return rest;
}

// Fills the entries of the station value table, in index order.
class EntryFiller {
  public:
    EntryFiller(const StationTable& table, const UnitControls& units, const NumberForms& forms,
                CurrentReadings& readings, ReadingDisplay& display)
        : table_(table)
        , units_(units)
        , forms_(forms)
        , readings_(readings)
        , display_(display) {}

    void fillAll() {
        fillDate();
        fillTime();
        showNumber(2, u"OutTemp", stationNumber(u"OutTemp"));
        showNumber(3, u"WindSpeed", stationNumber(u"WindSpeed"));
        showNumber(4, u"Gust", stationNumber(u"Gust"));
        showOneDecimal(5, u"WindDirection",
                       CardinalToDegrees(value(u"WindDirection"), units_.Cardinal));
        showNumber(6, u"RainDaily", dailyRain());
        showNumber(7, u"OutHumidity", humidity());
        showNumber(8, u"DewPoint", stationNumber(u"DewPoint"));
        readings_.BarometricPressure = stationNumber(u"Barometer");
        showOneDecimal(9, u"Barometer", readings_.BarometricPressure);
        fillUnit(10, u"OutTemp");
        fillUnit(11, u"WindSpeed");
        fillUnit(12, u"Barometer");
    }

  private:
    QStringView value(QStringView name) const {
        return table_.cell(kValueCell, FindRow(table_, name));
    }

    double stationNumber(QStringView name) const { return ParseStationNumber(value(name), forms_); }

    double dailyRain() const {
        const double rain = std::abs(parseLocaleNumber(value(u"RainDayMin"), forms_) -
                                     parseLocaleNumber(value(u"RainDayMax"), forms_));
        return std::isfinite(rain) ? rain : 0;
    }

    double humidity() const {
        return ParseStationNumber(withoutCharacters(value(u"OutHumidity"), units_.ExcChrHumidity),
                                  forms_);
    }

    void describe(std::size_t entry, QStringView description) {
        display_.LblWSDesc[entry].Caption = description.toString();
    }

    void show(std::size_t entry, QStringView text) {
        display_.LblWSValue[entry].Caption =
            text.first(std::min(text.size(), kLongestShown)).toString();
    }

    void showNumber(std::size_t entry, QStringView description, double number) {
        describe(entry, description);
        show(entry, numberText(number, forms_));
    }

    void showOneDecimal(std::size_t entry, QStringView description, double number) {
        describe(entry, description);
        show(entry, formatNumber(number, u"0.0", forms_));
    }

    void fillUnit(std::size_t entry, QStringView name) {
        describe(entry, u"Units");
        show(entry, table_.cell(kUnitCell, FindRow(table_, name)));
    }

    // A date that cannot be read leaves both the entry and the station's time as they were.
    void fillDate() {
        describe(0, u"Date");
        const int dateFormat = units_.DateFormat.Index;
        date_ = ParseStationDate(value(u"Date"), dateFormat);
        if (!date_)
            return;
        readings_.StationDateTime = QDateTime(*date_, QTime(0, 0));
        show(0, formatDate(readings_.StationDateTime, dateFormat == 1 ? u"mm/dd" : u"dd/mm"));
    }

    void fillTime() {
        describe(1, u"Time");
        const QStringView cell = value(u"Time");
        const std::optional<QTime> time = parseStationTime(cell);
        if (!time) {
            show(1, cell);
            return;
        }
        show(1, time->toString(QStringLiteral("HH:mm:ss")));
        if (date_)
            readings_.StationDateTime = QDateTime(*date_, *time);
    }

    const StationTable& table_;
    const UnitControls& units_;
    const NumberForms& forms_;
    CurrentReadings& readings_;
    ReadingDisplay& display_;
    std::optional<QDate> date_; // of this read
};

// Adds `found` to what is remembered; true when it is lacking that was found before.
bool lacks(bool& remembered, bool found) {
    const bool lacking = remembered && !found;
    remembered = remembered || found;
    return lacking;
}

// True when a number was found for the name. A gust that is not written at all is none: stations
// leave it out in still air.
bool hasNumber(const StationTable& table, QStringView name, const UnitControls& units,
               const NumberForms& forms) {
    const QString text =
        withoutCharacters(table.cell(kValueCell, FindRow(table, name)),
                          name == u"OutHumidity" ? units.ExcChrHumidity : QString());
    return isStationNumber(text, forms) || (name == u"Gust" && text.trimmed().isEmpty());
}

// Compares the table with what earlier reads found, and adds what this one found.
StationRead judgeTable(const StationTable& table, const UnitControls& units,
                       const NumberForms& forms, StationFileMemory& memory) {
    bool any = false;
    bool lacksName = false;
    bool lacksNumber = false;
    for (std::size_t i = 0; i < kJudgedNames.size(); ++i) {
        const QStringView name = kJudgedNames[i];
        const bool found = FindRow(table, name) > 0;
        any = any || found;
        lacksName = lacks(memory.namesFound[i], found) || lacksName;
        if (found && i + 1 < kJudgedNames.size())
            lacksNumber =
                lacks(memory.numbersFound[i], hasNumber(table, name, units, forms)) || lacksNumber;
    }
    if (!any)
        return StationRead::NoReadings;
    if (lacksName)
        return StationRead::Incomplete;
    return lacksNumber ? StationRead::NoNumber : StationRead::Valid;
}

// True when a CSV text stops too early, as far as can be told. Nothing is remembered yet for the
// first read of a session: what it lacks counts as torn off until a second one lacks it, too.
bool tornCsv(const QString& text, const StationTable& table, StationFileMemory& memory) {
    const bool first = !memory.anyRead;
    const bool whole = std::all_of(memory.namesFound.cbegin(), memory.namesFound.cend(),
                                   [](bool found) { return found; });
    const bool lineEnd = (text.endsWith(u'\n') || text.endsWith(u'\r')) && !table.cutShort();
    return lacks(memory.endedInLineEnd, lineEnd) || table.cutShort() ||
           (first && !(whole && lineEnd));
}

} // namespace

StationRead ReadStationFile(const StationFileControls& controls, const UnitControls& units,
                            const NumberForms& forms, const QString& fileTimeText,
                            StationFileMemory& memory, CurrentReadings& readings,
                            ReadingDisplay& display) {
    const QString path = controls.HTMFile.Caption;
    const std::optional<QString> file = findFile(path);
    if (!file)
        return StationRead::Missing;
    const FileContents contents = readFile(*file, kStationFileLimit);
    if (contents.result != ReadResult::Ok)
        return fromReadResult(contents.result);
    readings.LastFileTime = fileTimeText;
    if (contents.bytes.contains('\0'))
        return StationRead::NotText;

    const QString text = decodeText(contents.bytes);
    const bool csv = path.contains(QStringLiteral(".csv"));
    const StationTable table = csv ? ParseCsvTable(text) : ParseHtmlTable(text);
    EntryFiller(table, units, forms, readings, display).fillAll();

    const StationRead judged = judgeTable(table, units, forms, memory);
    const bool torn = csv && tornCsv(text, table, memory);
    memory.anyRead = memory.anyRead || judged != StationRead::NoReadings;
    return judged == StationRead::Valid && torn ? StationRead::Incomplete : judged;
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
    case StationRead::NoNumber:
        return QStringLiteral("Weather Station Data - value missing or not a number");
    case StationRead::Incomplete:
        break;
    }
    return QStringLiteral("Weather Station Data - file not complete");
}

} // namespace skyhold
