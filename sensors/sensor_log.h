// SPDX-License-Identifier: GPL-3.0-or-later
// The category of this program's messages.
#pragma once

#include <QLoggingCategory>

namespace skyhold {

Q_DECLARE_LOGGING_CATEGORY(sensorLog)

} // namespace skyhold
