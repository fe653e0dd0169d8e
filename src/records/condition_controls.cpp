#include "records/condition_controls.h"

namespace skyhold {

ConditionControls::ConditionControls() {
    const auto digits = [](ThreeBoxes& boxes, int decimals) {
        for (NumberBox& box : boxes)
            box.DigitsDecimal = decimals;
    };
    digits(LimitWind, 1);
    digits(LimitGust, 1);
    digits(LimitTemp, 0);
    digits(LimitDew, 0);
    digits(LimitHum, 0);
    LimitTemp[0].AllowNegative = true;
    LimitTemp[1].AllowNegative = true;
    SafeDelayVal.DigitsMostSignificant = 4;
    SafeDelayVal.DigitsDecimal = 0;
    WSDataOldUnsafe.Caption = QStringLiteral("Data old => Unsafe");
    NBDataOldUnsafe.Caption = QStringLiteral("Data old => Unsafe");
    BeyondLimitUnsafe.Caption = QStringLiteral("Values beyond the last limit are unsafe");
}

ThreeBoxes& ConditionControls::limits(Quantity quantity) {
    switch (quantity) {
    case Quantity::Wind:
        return LimitWind;
    case Quantity::Gust:
        return LimitGust;
    case Quantity::Temperature:
        return LimitTemp;
    case Quantity::Dew:
        return LimitDew;
    default:
        return LimitHum;
    }
}

const ThreeBoxes& ConditionControls::limits(Quantity quantity) const {
    return const_cast<ConditionControls*>(this)->limits(quantity);
}

ThreeLabels& ConditionControls::swatches(Quantity quantity) {
    switch (quantity) {
    case Quantity::Wind:
        return ColorWind;
    case Quantity::Gust:
        return ColorGust;
    case Quantity::Temperature:
        return ColorTemp;
    case Quantity::Dew:
        return ColorDew;
    default:
        return ColorHum;
    }
}

const ThreeLabels& ConditionControls::swatches(Quantity quantity) const {
    return const_cast<ConditionControls*>(this)->swatches(quantity);
}

ThreeChecks& ConditionControls::unsafe(Quantity quantity) {
    switch (quantity) {
    case Quantity::Cloud:
        return CondCloud;
    case Quantity::Rain:
        return CondRain;
    case Quantity::Brightness:
        return CondDay;
    case Quantity::Wind:
        return CondWind;
    case Quantity::Gust:
        return CondGust;
    case Quantity::Temperature:
        return CondTemp;
    case Quantity::Dew:
        return CondDew;
    case Quantity::Humidity:
        break;
    }
    return CondHum;
}

const ThreeChecks& ConditionControls::unsafe(Quantity quantity) const {
    return const_cast<ConditionControls*>(this)->unsafe(quantity);
}

} // namespace skyhold
