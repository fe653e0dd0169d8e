// SPDX-License-Identifier: GPL-3.0-or-later
// From a request to its answer.
#pragma once

#include "gateway/alpaca.h"
#include "gateway/history_worker.h"
#include "gateway/host_check.h"
#include "gateway/http_server.h"
#include "gateway/state.h"

namespace skyhold {

struct Site {
    const StateBoard& board;
    HostCheck hosts;
    AlpacaServer alpaca;
    HistoryWorker& history;
    std::function<HttpServer::Counts()> counts = [] {
        return HttpServer::Counts();
    };
    std::function<std::int64_t()> nowMs = bootMs;
};

// In the thread of the network.
Handling route(const Request& request, Site& site);

} // namespace skyhold
