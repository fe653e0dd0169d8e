// SPDX-License-Identifier: GPL-3.0-or-later
#include "records/network_controls.h"

namespace skyhold {

NetworkControls::NetworkControls() {
    Port.DigitsMostSignificant = 5;
    Port.DigitsDecimal = 0;
    Reach.Index = 0;
}

} // namespace skyhold
