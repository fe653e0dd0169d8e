// The labels that show the readings, their conditions and their times.
#pragma once

#include "model/quantity.h"
#include "records/controls.h"

#include <array>

namespace skyhold {

// The nine headers, by the quantity that they stand over.
enum class Header {
    Cloud,
    Rain,
    Brightness,
    Wind,
    Gust,
    Direction,
    DewPoint,
    Humidity,
    Temperature
};

struct ReadingDisplay {
    std::array<Label, 9> Label0; // indexed by Header
    Label LValCloud, LValRain, LValBrightness, LValTemperature, LValWindSpeed, LValWindGust,
        LValWindDir, LValDewPoint, LValHumidity, LValSwitch;
    Label LCondCloud, LCondRain, LCondBrightness, LCondTemp, LCondWind, LCondGust, LCondDewPoint,
        LCondHumidity;
    Label Label3Sensor;  // time of the sensor program's last reading
    Label Label3Station; // time of the station's last record
    Label LblSwitch;
    Label SensorStatus; // "NB error" while the sensor program fails
    Label LblCause;     // why the verdict is what it is, in words
    Label NBAlarmMsg;
    Label WSAlarmMsg;
    LampPair LEDRead;

    // The station value table: entry 0 date, 1 time, 2 temperature, 3 wind, 4 gust, 5 direction,
    // 6 rain, 7 humidity, 8 dew point, 9 pressure, 10 temperature unit text, 11 speed unit text,
    // 12 pressure unit text.
    std::array<Label, 13> LblWSDesc;
    std::array<Label, 13> LblWSValue;

    Label& header(Header which) { return Label0[static_cast<std::size_t>(which)]; }
    Label& condition(Quantity quantity);
};

// Sets a label's text colour and text.
void PaintLabel(Label& label, Colour colour, const QString& text);

} // namespace skyhold
