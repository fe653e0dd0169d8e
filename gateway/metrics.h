// SPDX-License-Identifier: GPL-3.0-or-later
// What Prometheus collects.
#pragma once

#include "gateway/http_server.h"
#include "gateway/state.h"

namespace skyhold {

// Prometheus' text format 0.0.4. Values that are not known are left out; skyhold_safe is always
// there.
QByteArray metricsText(const View& view, const HttpServer::Counts& counts);

} // namespace skyhold
