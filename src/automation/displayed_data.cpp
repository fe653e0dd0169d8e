#include "automation/displayed_data.h"

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr Colour kUnknownColour = 0xFFFF80;

struct Shown {
    const char16_t* key;
    Label ReadingDisplay::*condition;
    Label ReadingDisplay::*value;
    Label UnitControls::*unit; // nullptr: the text below
    const char16_t* unitText;
};

using Display = ReadingDisplay;
constexpr auto kTemperatureUnit = &UnitControls::TemperatureUnitText;
constexpr auto kSpeedUnit = &UnitControls::SpeedUnitText;

constexpr std::array<Shown, 8> kShown{{
    {u"cloud", Quantity::Cloud, &Display::LValCloud, kTemperatureUnit, nullptr},
    {u"rain", Quantity::Rain, &Display::LValRain, nullptr, u"cycles"},
    {u"wind", Quantity::Wind, &Display::LValWindSpeed, kSpeedUnit, nullptr},
    {u"gust", Quantity::Gust, &Display::LValWindGust, kSpeedUnit, nullptr},
    {u"dew", Quantity::Dew, &Display::LValDewPoint, kTemperatureUnit, nullptr},
    {u"humididty", Quantity::Humidity, &Display::LValHumidity, nullptr, u"%"},
    {u"temperature", Quantity::Temperature, &Display::LValTemperature, kTemperatureUnit, nullptr},
    {u"brightnesss", Quantity::Brightness, &Display::LValBrightness, nullptr, u"K"},
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
        return colourText(known ? (display.*shown->condition).ForeColor.value() : kUnknownColour);
    if (info != u"desc"_s && info != u"value"_s)
        return {};
    if (!known)
        return u"n/a"_s;
    if (info == u"desc"_s)
        return (display.*shown->condition).Caption;
    return (display.*shown->value).Caption.value() + u' ' +
           (shown->unit ? (units.*shown->unit).Caption.value()
                        : QString::fromUtf16(shown->unitText));
}

} // namespace skyhold
