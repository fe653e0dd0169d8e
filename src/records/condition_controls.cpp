#include "records/condition_controls.h"

namespace skyhold {

ConditionControls::ConditionControls() {
    for (const QuantityRow& row : quantityTable()) {
        for (std::size_t i = 0; i < kLevelCount; ++i) {
            NumberBox& box = Limit[row.quantity][i];
            box.DigitsDecimal = row.limitDecimals;
            box.AllowNegative = static_cast<int>(i) < row.negativeLimits;
        }
    }
    SafeDelayVal.DigitsMostSignificant = 4;
    SafeDelayVal.DigitsDecimal = 0;
    WSDataOldUnsafe.Caption = QStringLiteral("Data old => Unsafe");
    NBDataOldUnsafe.Caption = QStringLiteral("Data old => Unsafe");
    BeyondLimitUnsafe.Caption = QStringLiteral("Values beyond the last limit are unsafe");
}

} // namespace skyhold
