#include "core/station_display.h"

#include "conditions/classification.h"

namespace skyhold {

namespace {

constexpr std::array kStationHeaders{Header::Wind,     Header::Gust,     Header::Direction,
                                     Header::DewPoint, Header::Humidity, Header::Temperature};

double shownNumber(const Label& label, const NumberForms& forms) {
    return numberFromText(label.Caption.value(), forms).value_or(0);
}

void showValues(Records& records, const NumberForms& forms) {
    ReadingDisplay& display = records.display;
    CurrentReadings& readings = records.readings;
    const std::array<std::pair<Label*, std::size_t>, 6> shown{{{&display.LValWindSpeed, 3},
                                                               {&display.LValWindGust, 4},
                                                               {&display.LValWindDir, 5},
                                                               {&display.LValDewPoint, 8},
                                                               {&display.LValHumidity, 7},
                                                               {&display.LValTemperature, 2}}};
    for (const auto& [label, entry] : shown)
        PaintLabel(*label, kGreen, display.LblWSValue[entry].Caption);

    readings.StationTemperature = shownNumber(display.LblWSValue[2], forms);
    readings.WindSpeed = shownNumber(display.LValWindSpeed, forms);
    readings.GustSpeed = shownNumber(display.LValWindGust, forms);
    readings.WindDirection = shownNumber(display.LValWindDir, forms);
    readings.DewPointValue = shownNumber(display.LValDewPoint, forms);
    readings.HumidityValue = shownNumber(display.LValHumidity, forms);
    ClassifyTemperature(display.LCondTemp, readings.StationTemperature, readings,
                        records.conditions);
}

void blankValues(ReadingDisplay& display) {
    for (Label* label : {&display.LValWindSpeed, &display.LValWindGust, &display.LValWindDir,
                         &display.LValDewPoint, &display.LValHumidity, &display.LValTemperature,
                         &display.LCondWind, &display.LCondGust, &display.LCondDewPoint,
                         &display.LCondHumidity, &display.LCondTemp})
        PaintLabel(*label, kYellow, QString());
    display.Label3Station.Caption = QString();
}

} // namespace

void SetStationDataValid(bool valid, Records& records, const NumberForms& forms) {
    records.readings.StationValid = valid;
    for (const Header which : kStationHeaders)
        records.display.header(which).ForeColor = valid ? kCyan : kRed;
    if (valid)
        showValues(records, forms);
    else
        blankValues(records.display);
}

} // namespace skyhold
