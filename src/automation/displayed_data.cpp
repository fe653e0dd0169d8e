// SPDX-License-Identifier: GPL-3.0-or-later
#include "automation/displayed_data.h"

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr Colour kUnknownColour = 0xFFFF80;

struct Shown {
    const char16_t* key;
    Quantity quantity;
    Label UnitControls::*unit; // nullptr: the text below
    const char16_t* unitText;
};

constexpr auto kTemperatureUnit = &UnitControls::TemperatureUnitText;
constexpr auto kSpeedUnit = &UnitControls::SpeedUnitText;

constexpr std::array<Shown, 8> kShown{{
    {u"cloud", Quantity::Cloud, kTemperatureUnit, nullptr},
    {u"rain", Quantity::Rain, nullptr, u"cycles"},
    {u"wind", Quantity::Wind, kSpeedUnit, nullptr},
    {u"gust", Quantity::Gust, kSpeedUnit, nullptr},
    {u"dew", Quantity::Dew, kTemperatureUnit, nullptr},
    {u"humididty", Quantity::Humidity, nullptr, u"%"},
    {u"temperature", Quantity::Temperature, kTemperatureUnit, nullptr},
    {u"brightnesss", Quantity::Brightness, nullptr, u"K"},
}};

} // namespace

QString colourText(Colour colour) {
    const QString digits =
        QString::number(static_cast<std::uint32_t>(colour), 16).toUpper().rightJustified(6, u'0');
    return u'#' + digits.mid(4, 2) + digits.mid(2, 2) + digits.left(2);
}

QString Kiv_DataDisplayed(const ReadingDisplay& display, const UnitControls& units,
                          const QString& info, const QString& ref) {
    const QString key = ref.toLower();
    const auto* const shown = std::find_if(kShown.begin(), kShown.end(),
                                           [&](const Shown& row) { return key == row.key; });
    const bool known = shown != kShown.end();
    if (info == u"color"_s)
        return colourText(known ? display.LCond[shown->quantity].ForeColor.value()
                                : kUnknownColour);
    if (info != u"desc"_s && info != u"value"_s)
        return {};
    if (!known)
        return u"n/a"_s;
    if (info == u"desc"_s)
        return display.LCond[shown->quantity].Caption;
    return display.LVal[shown->quantity].Caption.value() + u' ' +
           (shown->unit ? (units.*shown->unit).Caption.value()
                        : QString::fromUtf16(shown->unitText));
}

} // namespace skyhold
