// SPDX-License-Identifier: GPL-3.0-or-later
#include "datafiles/station_values.h"

#include "datafiles/station_number.h"
#include "units/cardinal.h"

#include <algorithm>

namespace skyhold {

namespace {

constexpr QStringView kDirection = u"WindDirection";

QString nameOf(Quantity quantity) {
    return QString::fromLatin1(rowOf(quantity).valueMember);
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

// The number of a value cell. Humidity comes with a sign that is no part of it.
std::optional<double> numberIn(QStringView text, Quantity quantity, const UnitControls& units,
                               const NumberForms& forms) {
    if (quantity != Quantity::Humidity)
        return ParseStationNumber(text, forms);
    return ParseStationNumber(withoutCharacters(text, units.ExcChrHumidity), forms);
}

} // namespace

bool StationValues::anyMissing() const {
    return direction.missing ||
           std::ranges::any_of(values, [](const StationValue& value) { return value.missing; });
}

bool StationNames::any() const {
    return direction || std::ranges::any_of(found, [](bool there) { return there; });
}

bool StationNames::all() const {
    return direction && std::ranges::all_of(kStationQuantities,
                                            [this](Quantity quantity) { return found[quantity]; });
}

StationNames namesIn(const StationTable& table) {
    StationNames names;
    for (const Quantity quantity : kStationQuantities)
        names.found[quantity] = FindRow(table, nameOf(quantity)) > 0;
    names.direction = FindRow(table, kDirection) > 0;
    return names;
}

StationNames operator|(const StationNames& a, const StationNames& b) {
    StationNames both;
    for (const Quantity quantity : kStationQuantities)
        both.found[quantity] = a.found[quantity] || b.found[quantity];
    both.direction = a.direction || b.direction;
    return both;
}

StationValues stationValues(const StationTable& table, const StationNames& known,
                            const UnitControls& units, const NumberForms& forms) {
    StationValues values;
    for (const Quantity quantity : kStationQuantities) {
        StationValue& value = values.values[quantity];
        if (const qsizetype row = FindRow(table, nameOf(quantity)); row > 0) {
            value.number = numberIn(table.cell(kValueCell, row), quantity, units, forms);
            value.missing = !value.number;
        } else if (known.found[quantity]) {
            value = {.number = {}, .missing = true};
        }
    }
    if (const qsizetype row = FindRow(table, kDirection); row > 0)
        values.direction.number = CardinalToDegrees(table.cell(kValueCell, row), units.Cardinal);
    else if (known.direction)
        values.direction = {.number = {}, .missing = true};
    return values;
}

bool mayHaveLostValue(const StationTable& table) {
    const qsizetype last = table.rowCount();
    QStringView field;
    for (int cell = StationTable::kCells; cell >= 1 && field.isEmpty(); --cell)
        field = table.cell(cell, last);
    const auto mayBeLost = [&](QStringView name) {
        for (int cell = 1; cell <= StationTable::kCells; ++cell) {
            if (table.cell(cell, last).compare(name, Qt::CaseInsensitive) == 0)
                return true;
        }
        return !field.isEmpty() && FindRow(table, name) == 0 &&
               name.startsWith(field, Qt::CaseInsensitive);
    };
    return mayBeLost(kDirection) || std::ranges::any_of(kStationQuantities, [&](Quantity quantity) {
               return mayBeLost(nameOf(quantity));
           });
}

} // namespace skyhold
