#include "datafiles/station_file.h"

#include "datafiles/station_number.h"
#include "datafiles/station_table.h"
#include "platform/files.h"
#include "platform/text_encoding.h"

#include <algorithm>
#include <cmath>

namespace skyhold {

namespace {

constexpr int kUnitCell = 2;
constexpr int kValueCell = 3;

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
    EntryFiller(const StationTable& table, const StationValues& values, const UnitControls& units,
                const NumberForms& forms, CurrentReadings& readings, ReadingDisplay& display)
        : table_(table)
        , values_(values)
        , units_(units)
        , forms_(forms)
        , readings_(readings)
        , display_(display) {}

    void fillAll() {
        fillDate();
        fillTime();
        showNumber(2, u"OutTemp", values_.temperature.number);
        showNumber(3, u"WindSpeed", values_.wind.number);
        showNumber(4, u"Gust", values_.gust.number);
        showOneDecimal(5, u"WindDirection", values_.direction.number);
        showNumber(6, u"RainDaily", dailyRain());
        showNumber(7, u"OutHumidity", values_.humidity.number);
        showNumber(8, u"DewPoint", values_.dewPoint.number);
        fillPressure();
        fillUnit(10, u"OutTemp");
        fillUnit(11, u"WindSpeed");
        fillUnit(12, u"Barometer");
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

    void describe(std::size_t entry, QStringView description) {
        display_.LblWSDesc[entry].Caption = description.toString();
    }

    void show(std::size_t entry, QStringView text) {
        display_.LblWSValue[entry].Caption =
            text.first(std::min(text.size(), kLongestShown)).toString();
    }

    void showNumber(std::size_t entry, QStringView description, std::optional<double> number) {
        describe(entry, description);
        show(entry, number ? numberText(*number, forms_) : QString());
    }

    void showOneDecimal(std::size_t entry, QStringView description, std::optional<double> number) {
        describe(entry, description);
        show(entry, number ? formatNumber(*number, u"0.0", forms_) : QString());
    }

    void fillPressure() {
        std::optional<double> pressure = 0;
        if (FindRow(table_, u"Barometer") > 0)
            pressure = ParseStationNumber(value(u"Barometer"), forms_);
        readings_.BarometricPressure = pressure.value_or(0);
        showOneDecimal(9, u"Barometer", pressure);
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
    const StationValues& values_;
    const UnitControls& units_;
    const NumberForms& forms_;
    CurrentReadings& readings_;
    ReadingDisplay& display_;
    std::optional<QDate> date_; // of this read
};

// True when a CSV text stops too early, as far as can be told. Nothing is remembered yet for the
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

    const bool csv = path.contains(QStringLiteral(".csv"));
    const QString decoded = decodeText(contents.bytes);
    const QString text = csv ? beforeEndMark(decoded) : decoded;
    const StationTable table = csv ? ParseCsvTable(text) : ParseHtmlTable(text);
    const StationNames names = namesIn(table);
    memory.names = memory.names | names;
    const StationValues values = stationValues(table, memory.names, units, forms);
    EntryFiller(table, values, units, forms, readings, display).fillAll();

    const bool torn = csv && tornCsv(text, table, memory);
    if (!names.any())
        return StationRead::NoReadings;
    memory.anyRead = true;
    if (torn)
        return StationRead::Incomplete;
    return values.anyMissing() ? StationRead::ValueMissing : StationRead::Valid;
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
