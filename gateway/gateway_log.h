// SPDX-License-Identifier: GPL-3.0-or-later
// The category of the gateway's messages.
#pragma once

#include <QLoggingCategory>

namespace skyhold {

Q_DECLARE_LOGGING_CATEGORY(gatewayLog)

} // namespace skyhold
