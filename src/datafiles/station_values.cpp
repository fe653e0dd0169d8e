#include "datafiles/station_values.h"

#include "datafiles/station_number.h"
#include "units/cardinal.h"

#include <algorithm>

namespace skyhold {

namespace {

constexpr int kValueCell = 3;

struct JudgedRow {
    QStringView name;
    StationValue StationValues::*value;
    bool StationNames::*found;
};

using V = StationValues;
using N = StationNames;
constexpr std::array<JudgedRow, 6> kJudgedRows{{{u"OutTemp", &V::temperature, &N::temperature},
                                                {u"WindSpeed", &V::wind, &N::wind},
                                                {u"Gust", &V::gust, &N::gust},
                                                {u"OutHumidity", &V::humidity, &N::humidity},
                                                {u"DewPoint", &V::dewPoint, &N::dewPoint},
                                                {u"WindDirection", &V::direction, &N::direction}}};

QString withoutCharacters(QStringView text, const QString& characters) {
    QString rest;
    rest.reserve(text.size());
    for (const QChar c : text) {
        if (!characters.contains(c))
            rest += c;
    }
    return rest;
}

} // namespace

bool StationValues::anyMissing() const {
    return std::ranges::any_of(kJudgedRows,
                               [this](const JudgedRow& q) { return (this->*q.value).missing; });
}

bool StationNames::any() const {
    return std::ranges::any_of(kJudgedRows, [this](const JudgedRow& q) { return this->*q.found; });
}

bool StationNames::all() const {
    return std::ranges::all_of(kJudgedRows, [this](const JudgedRow& q) { return this->*q.found; });
}

StationNames namesIn(const StationTable& table) {
    StationNames names;
    for (const JudgedRow& q : kJudgedRows)
        names.*q.found = FindRow(table, q.name) > 0;
    return names;
}

StationNames operator|(const StationNames& a, const StationNames& b) {
    StationNames both;
    for (const JudgedRow& q : kJudgedRows)
        both.*q.found = a.*q.found || b.*q.found;
    return both;
}

StationValues stationValues(const StationTable& table, const StationNames& known,
                            const UnitControls& units, const NumberForms& forms) {
    StationValues values;
    for (const JudgedRow& q : kJudgedRows) {
        StationValue& value = values.*q.value;
        const qsizetype row = FindRow(table, q.name);
        if (row == 0) {
            if (known.*q.found)
                value = {.number = {}, .missing = true};
            continue;
        }
        const QStringView text = table.cell(kValueCell, row);
        if (q.value == &V::direction) {
            value.number = CardinalToDegrees(text, units.Cardinal);
            continue;
        }
        value.number =
            q.value == &V::humidity
                ? ParseStationNumber(withoutCharacters(text, units.ExcChrHumidity), forms)
                : ParseStationNumber(text, forms);
        value.missing = !value.number;
    }
    return values;
}

bool mayHaveLostValue(const StationTable& table) {
    const qsizetype last = table.rowCount();
    QStringView field;
    for (int cell = StationTable::kCells; cell >= 1 && field.isEmpty(); --cell)
        field = table.cell(cell, last);
    return std::ranges::any_of(kJudgedRows, [&](const JudgedRow& q) {
        for (int cell = 1; cell <= StationTable::kCells; ++cell) {
            if (table.cell(cell, last).compare(q.name, Qt::CaseInsensitive) == 0)
                return true;
        }
        return !field.isEmpty() && FindRow(table, q.name) == 0 &&
               q.name.startsWith(field, Qt::CaseInsensitive);
    });
}

} // namespace skyhold
