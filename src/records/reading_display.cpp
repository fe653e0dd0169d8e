#include "records/reading_display.h"

namespace skyhold {

Label& ReadingDisplay::condition(Quantity quantity) {
    switch (quantity) {
    case Quantity::Cloud:
        return LCondCloud;
    case Quantity::Rain:
        return LCondRain;
    case Quantity::Brightness:
        return LCondBrightness;
    case Quantity::Wind:
        return LCondWind;
    case Quantity::Gust:
        return LCondGust;
    case Quantity::Temperature:
        return LCondTemp;
    case Quantity::Dew:
        return LCondDewPoint;
    case Quantity::Humidity:
        break;
    }
    return LCondHumidity;
}

void PaintLabel(Label& label, Colour colour, const QString& text) {
    label.ForeColor = colour;
    label.Caption = text;
}

} // namespace skyhold
