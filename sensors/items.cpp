// SPDX-License-Identifier: GPL-3.0-or-later
#include "sensors/items.h"

#include <QStringList>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

struct UnitRow {
    const char16_t* name;
    ItemMeasure measure;
    UnitStep step;
};

constexpr UnitRow kUnits[] = {
    {u"C", ItemMeasure::Temperature, {}},
    {u"F", ItemMeasure::Temperature, {5.0 / 9, -160.0 / 9}},
    {u"K", ItemMeasure::Temperature, {1, -273.15}},
    {u"km/h", ItemMeasure::Speed, {}},
    {u"mph", ItemMeasure::Speed, {1.609344, 0}},
    {u"m/s", ItemMeasure::Speed, {3.6, 0}},
    {u"kn", ItemMeasure::Speed, {1.852, 0}},
    {u"mm", ItemMeasure::Rain, {}},
    {u"cm", ItemMeasure::Rain, {10, 0}},
    {u"in", ItemMeasure::Rain, {25.4, 0}},
    {u"hPa", ItemMeasure::Pressure, {}},
    {u"mbar", ItemMeasure::Pressure, {}},
    {u"Pa", ItemMeasure::Pressure, {0.01, 0}},
    {u"inHg", ItemMeasure::Pressure, {33.8638866667, 0}},
    {u"mmHg", ItemMeasure::Pressure, {1.33322387415, 0}},
    {u"%", ItemMeasure::Percent, {}},
    {u"fraction", ItemMeasure::Percent, {100, 0}},
};

} // namespace

std::optional<UnitStep> unitNamed(const QString& name, ItemMeasure measure) {
    for (const UnitRow& row : kUnits) {
        if (row.measure == measure && name.compare(row.name, Qt::CaseInsensitive) == 0)
            return row.step;
    }
    return std::nullopt;
}

QString unitOf(ItemMeasure measure) {
    switch (measure) {
    case ItemMeasure::Temperature:
        return u"°C"_s;
    case ItemMeasure::Speed:
        return u"km/h"_s;
    case ItemMeasure::Rain:
        return u"mm"_s;
    case ItemMeasure::Pressure:
        return u"hPa"_s;
    case ItemMeasure::Percent:
        return u"%"_s;
    case ItemMeasure::Angle:
        return u"°"_s;
    case ItemMeasure::Plain:
        break;
    }
    return {};
}

QString unitNames(ItemMeasure measure) {
    QStringList names;
    for (const UnitRow& row : kUnits) {
        if (row.measure == measure)
            names.append(QString::fromUtf16(row.name));
    }
    return names.join(u", "_s);
}

} // namespace skyhold
