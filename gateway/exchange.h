// SPDX-License-Identifier: GPL-3.0-or-later
// Between libmicrohttpd and plain values: one request, one answer, one listener.
#pragma once

#include "gateway/request.h"

#include <microhttpd.h>

#include <deque>

namespace skyhold {

struct Exchange {
    Request request;
    bool handled = false;
};

// One that follows the events.
struct Listener {
    std::deque<QByteArray> queue;
    qsizetype begun = 0; // bytes of the first that are sent
    qsizetype unsent = 0;
    bool ended = false;

    void add(const QByteArray& event);
    std::size_t take(char* buffer, std::size_t most);
};

void fillRequest(Request& request, MHD_Connection* connection, const char* method, const char* url);

// Every answer has the headers that keep a browser from trusting it with more than its page needs.
MHD_Result queueAnswer(MHD_Connection* connection, const Answer& answer);
MHD_Result queueStream(MHD_Connection* connection, MHD_ContentReaderCallback read, void* data,
                       MHD_ContentReaderFreeCallback end);

} // namespace skyhold
