// SPDX-License-Identifier: GPL-3.0-or-later
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
    for (NumberBox* box : {&FlapClosures, &FlapLongest, &RoofCheck}) {
        box->DigitsMostSignificant = 4;
        box->DigitsDecimal = 0;
    }
    FlapLongest.Value = 3600;
    QuickReaction.Caption = QStringLiteral("React between two cycles");
    EarnFirstSafe.Caption = QStringLiteral("The first safe is earned");
    BeyondLimitUnsafe.Caption = QStringLiteral("Values beyond the last limit are unsafe");
}

} // namespace skyhold
