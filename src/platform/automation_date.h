// SPDX-License-Identifier: GPL-3.0-or-later
// A time in the form of the automation interfaces.
#pragma once

#include <QMetaType>

namespace skyhold {

// Local days since 30 December 1899, the time of day as the fraction.
struct AutomationDate {
    double days = 0;
    bool operator==(const AutomationDate&) const = default;
};

} // namespace skyhold

Q_DECLARE_METATYPE(skyhold::AutomationDate)
