// SPDX-License-Identifier: GPL-3.0-or-later
#include "datafiles/station_check.h"

#include "datafiles/staleness.h"
#include "datafiles/station_file.h"
#include "datafiles/station_number.h"
#include "platform/files.h"
#include "platform/text_encoding.h"
#include "units/detection.h"
#include "units/unit_text.h"

#include <cmath>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

QString secondsText(double seconds) {
    return durationText(static_cast<std::int64_t>(std::floor(seconds)));
}

// The same lines as the monitor's two first reads, with what each entry came to.
class Checker {
  public:
    Checker(const UnitControls& units, double timeoutMinutes, const NumberForms& forms,
            const QDateTime& now)
        : units_(units)
        , controls_{}
        , forms_(forms)
        , now_(now) {
        controls_.TimeoutREAD.Value = timeoutMinutes;
    }

    StationCheck check(const QString& path) {
        controls_.HTMFile.Caption = path;
        const QDateTime written = stationFileTime(path);
        StationFileMemory memory;
        StationObservation seen;
        const StationRead first = ReadStationFile(controls_, units_, forms_, written, memory, seen);
        const StationRead read =
            first == StationRead::Incomplete
                ? ReadStationFile(controls_, units_, forms_, written, memory, seen)
                : first;
        if (!seen.tableFilled) {
            check_.lines = {path + u": "_s + stationReadStatus(read)};
            check_.brief = check_.remarks = {stationReadStatus(read)};
            check_.outcome = u"It cannot be read: the monitor would say unsafe."_s;
            return check_;
        }
        readTable(path);
        const QString found =
            u"%1, %2 entries, written %3 ago"_s.arg(csv_ ? u"CSV"_s : u"HTML"_s)
                .arg(table_.rowCount())
                .arg(secondsText(static_cast<double>(written.msecsTo(now_)) / 1000));
        add(path + u": "_s + found);
        check_.brief += found;
        check_.ageSeconds = written.msecsTo(now_) / 1000;
        addDateAndTime();
        addValues(seen);
        addOthers(seen);
        if (first == StationRead::Incomplete && read != StationRead::Incomplete)
            add(u"Not every name is there: a CSV file like this counts from a session's second "
                u"read on."_s);
        const bool fresh = addAge(written, memory.recordTime);
        const bool whole = read == StationRead::Valid;
        if (!whole)
            add(stationReadStatus(read));
        check_.outcome = fresh && whole
                             ? u"All of it can be judged."_s
                             : u"The monitor would say unsafe (\"Data old => Unsafe\")."_s;
        add(check_.outcome);
        addBrief(seen, fresh);
        check_.status = read == StationRead::NoReadings ? 2 : fresh && whole ? 0 : 1;
        return check_;
    }

  private:
    void readTable(const QString& path) {
        csv_ = path.contains(u".csv"_s);
        const FileContents contents = readFile(findFile(path).value_or(path), kStationFileLimit);
        text_ = decodeText(contents.bytes);
        table_ = csv_ ? ParseCsvTable(text_) : ParseHtmlTable(text_);
    }

    void add(const QString& line) { check_.lines.append(line); }

    bool has(QStringView name) const { return FindRow(table_, name) > 0; }
    QString cell(int which, QStringView name) const {
        return table_.cell(which, FindRow(table_, name)).toString().simplified();
    }

    void addEntry(const QString& name, const QString& meaning) {
        const QString text = cell(kValueCell, name);
        add(u"%1 %2 %3"_s.arg(name, -14)
                .arg(!has(name)       ? u"no such name"_s
                     : text.isEmpty() ? u"(empty)"_s
                                      : text,
                     -14)
                .arg(meaning)
                .trimmed());
    }

    void addDateAndTime() {
        const int order = units_.DateFormat.Index;
        const QString text = table_.cell(kValueCell, FindRow(table_, u"Date")).toString();
        const std::optional<QDate> date = ParseStationDate(text, order);
        QString meaning = u"not a date"_s;
        if (date) {
            meaning =
                date->toString(Qt::ISODate) + (order == 1 ? u", month first"_s : u", day first"_s);
            const std::optional<QDate> other = ParseStationDate(text, 1 - order);
            if (other && *other != *date &&
                std::abs(other->daysTo(now_.date())) < std::abs(date->daysTo(now_.date())))
                meaning += u"; the other order would be nearer to today"_s;
        }
        addEntry(u"Date"_s, meaning);
        check_.brief +=
            has(u"Date") ? u"Date %1: %2"_s.arg(text.simplified(), meaning) : u"No date"_s;
        const std::optional<QTime> time =
            parseStationTime(table_.cell(kValueCell, FindRow(table_, u"Time")));
        addEntry(u"Time"_s, time ? time->toString(u"HH:mm:ss"_s) : u"not a time of day"_s);
    }

    void addValues(const StationObservation& seen) {
        const TemperatureCode temperature =
            DetectTemperatureUnit(table_.cell(kUnitCell, FindRow(table_, u"OutTemp")), units_);
        const SpeedCode chosen = kSpeedCodes[static_cast<std::size_t>(
            std::clamp(units_.UnitsSpeed.Index.value(), 0, 3))];
        const SpeedCode speed =
            DetectSpeedUnit(table_.cell(kUnitCell, FindRow(table_, u"WindSpeed")), units_, chosen);
        for (const Quantity quantity : kStationQuantities) {
            const QuantityRow& row = rowOf(quantity);
            const QString name = QString::fromLatin1(row.valueMember);
            const std::optional<double> number = seen.numbers[quantity];
            const QString unit = quantity == Quantity::Dew
                                     ? unitText(Measure::Temperature, temperature, speed)
                                     : unitText(row.measure, temperature, speed);
            StationCheck::Value shown{
                quantity == Quantity::Dew ? u"Dew point"_s : QString::fromUtf16(row.title), {}, {}};
            QString meaning = u"MISSING: not a number"_s;
            if (!has(name)) {
                meaning = u"read as 0, as of a station without the instrument"_s;
                shown.note = u"not in the file: 0"_s;
                absent_ += name;
            } else if (!number) {
                shown.note = u"missing"_s;
                missing_ += name;
            } else {
                shown.text =
                    numberText(*number, forms_) + u' ' +
                    shownUnit(quantity == Quantity::Dew ? Measure::Temperature : row.measure,
                              temperature, speed);
                const QString value = numberText(*number, {}) + u' ' + unit;
                meaning =
                    value + u", judged"_s +
                    (quantity == Quantity::Dew ? u" as its distance to OutTemp"_s : QString());
                values_ += name + u' ' + shown.text;
            }
            addEntry(name, meaning);
            check_.values.push_back(shown);
        }
        if (temperature == TemperatureCode::Unknown)
            unknownUnits_ += u"OutTemp"_s;
        addUnit(u"OutTemp"_s, temperature == TemperatureCode::Unknown
                                  ? QString()
                                  : unitText(Measure::Temperature, temperature, speed));
        addUnit(u"WindSpeed"_s, unitText(Measure::Speed, temperature, speed));
    }

    void addUnit(const QString& name, const QString& known) {
        const QString text = cell(kUnitCell, name);
        add(u"%1 %2 %3"_s.arg(u"unit of "_s + name, -18)
                .arg(text.isEmpty() ? u"(empty)"_s : text, -10)
                .arg(known.isEmpty() ? u"not known: the unit that is chosen stays"_s : known));
    }

    void addOthers(const StationObservation& seen) {
        addEntry(u"WindDirection"_s,
                 seen.windDirection
                     ? u"%1 degrees, judged by the sectors"_s.arg(*seen.windDirection)
                     : u"not a compass label: with wind it counts as inside every sector"_s);
        for (const QString& name : {u"RainDayMin"_s, u"RainDayMax"_s})
            addEntry(name, u"not judged"_s);
        add(u"%1 %2"_s.arg(u"rain of the day"_s, -29)
                .arg(numberText(seen.dailyRain.value_or(0), {})));
        addEntry(u"Barometer"_s, seen.pressure ? numberText(*seen.pressure, {}) + u", not judged"_s
                                               : u"not a number; not judged"_s);
    }

    void addBrief(const StationObservation& seen, bool fresh) {
        if (seen.windDirection) {
            const QString from = cell(kValueCell, u"WindDirection");
            values_ += u"wind from "_s + from;
            check_.values.push_back({u"Wind from"_s, from, {}});
        }
        if (!values_.isEmpty())
            check_.brief += u"Read: "_s + values_.join(u", "_s);
        QStringList& remarks = check_.remarks;
        if (!missing_.isEmpty())
            remarks += u"Missing, not a number: "_s + missing_.join(u", "_s);
        if (!absent_.isEmpty())
            remarks += u"Not in the file, read as 0: "_s + absent_.join(u", "_s);
        if (!unknownUnits_.isEmpty())
            remarks += u"Unit not known, the chosen one stays: "_s + unknownUnits_.join(u", "_s);
        if (!seen.windDirection)
            remarks += u"No wind direction: wind counts as inside every sector"_s;
        if (!fresh)
            remarks +=
                u"Too old: more than %1"_s.arg(secondsText(controls_.TimeoutREAD.Value * 60));
        check_.brief += remarks;
    }

    // Whether the file is fresh now, and would be if nothing wrote it any more.
    bool addAge(const QDateTime& written, const QDateTime& record) {
        const double limit = controls_.TimeoutREAD.Value * 60;
        const double fileAge = static_cast<double>(written.msecsTo(now_)) / 1000;
        const bool fresh = fileAge <= limit;
        add(u"File: %1 old, limit %2%3"_s.arg(secondsText(fileAge), secondsText(limit),
                                              fresh ? QString() : u": TOO OLD"_s));
        if (!record.isValid()) {
            add(u"Record: no date and time: it is old whenever the file is not rewritten"_s);
            return fresh;
        }
        const double age = static_cast<double>(record.msecsTo(now_)) / 1000;
        add(u"Record: %1 %2, limit %3%4"_s.arg(
            secondsText(std::abs(age)), age < 0 ? u"ahead of the clock"_s : u"old"_s,
            secondsText(limit),
            std::abs(age) <= limit ? QString()
                                   : u": it is old whenever the file is not rewritten"_s));
        return fresh;
    }

    const UnitControls& units_;
    StationFileControls controls_;
    const NumberForms& forms_;
    QDateTime now_;
    bool csv_ = false;
    QString text_;
    StationTable table_;
    QStringList values_, missing_, absent_, unknownUnits_;
    StationCheck check_;
};

} // namespace

StationCheck checkStationFile(const QString& path, const UnitControls& units, double timeoutMinutes,
                              const NumberForms& forms, const QDateTime& now) {
    return Checker(units, timeoutMinutes, forms, now).check(path);
}

} // namespace skyhold
