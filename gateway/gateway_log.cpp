// SPDX-License-Identifier: GPL-3.0-or-later
#include "gateway/gateway_log.h"

namespace skyhold {

Q_LOGGING_CATEGORY(gatewayLog, "skyhold.gateway")

} // namespace skyhold
