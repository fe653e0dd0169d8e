#include "core/station_display.h"

#include "conditions/classification.h"

namespace skyhold {

namespace {

struct Shown {
    Header header;
    Label ReadingDisplay::*label;
    std::size_t entry; // of the station value table
    std::optional<double> CurrentReadings::*number;
    Colour whenMissing; // of the header; stations know no direction in still air
};

using D = ReadingDisplay;
using R = CurrentReadings;
constexpr std::array<Shown, 6> kShown{
    {{Quantity::Wind, &D::LValWindSpeed, 3, &R::WindSpeed, kRed},
     {Quantity::Gust, &D::LValWindGust, 4, &R::GustSpeed, kRed},
     {Header::Direction, &D::LValWindDir, 5, &R::WindDirection, kYellow},
     {Quantity::Dew, &D::LValDewPoint, 8, &R::DewPointValue, kRed},
     {Quantity::Humidity, &D::LValHumidity, 7, &R::HumidityValue, kRed},
     {Quantity::Temperature, &D::LValTemperature, 2, &R::StationTemperature, kRed}}};

void showValues(Records& records, const NumberForms& forms) {
    ReadingDisplay& display = records.display;
    CurrentReadings& readings = records.readings;
    for (const Shown& shown : kShown) {
        const QString text = display.LblWSValue[shown.entry].Caption;
        const std::optional<double> number = numberFromText(text, forms);
        readings.*shown.number = number;
        PaintLabel(display.*shown.label, number ? kGreen : kYellow, text);
        display.Label0[shown.header].ForeColor = number ? kCyan : shown.whenMissing;
    }
    ClassifyTemperature(display.LCond[Quantity::Temperature], readings.StationTemperature, readings,
                        records.conditions);
}

void blankValues(ReadingDisplay& display) {
    for (const Shown& shown : kShown) {
        PaintLabel(display.*shown.label, kYellow, QString());
        display.Label0[shown.header].ForeColor = kRed;
    }
    for (Label* label : {&display.LCond[Quantity::Wind], &display.LCond[Quantity::Gust], &display.LCond[Quantity::Dew],
                         &display.LCond[Quantity::Humidity], &display.LCond[Quantity::Temperature]})
        PaintLabel(*label, kYellow, QString());
    display.Label3Station.Caption = QString();
}

} // namespace

void SetStationDataValid(bool valid, Records& records, const NumberForms& forms) {
    records.readings.StationValid = valid;
    if (valid)
        showValues(records, forms);
    else
        blankValues(records.display);
}

} // namespace skyhold
