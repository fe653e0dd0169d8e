// SPDX-License-Identifier: GPL-3.0-or-later
#include "gateway/events.h"

namespace skyhold {

namespace {

constexpr int kLookMs = 500;
constexpr int kLooksABeat = 4;

QByteArray event(const char* name, const QByteArray& data) {
    return QByteArray("event: ") + name + "\ndata: " + data + "\n\n";
}

} // namespace

EventFeed::EventFeed(const StateBoard& board, HttpServer& server)
    : board_(board)
    , server_(server) {
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { look(); });
    timer_.start(kLookMs);
    stateChanged();
}

void EventFeed::stateChanged() {
    const View view = board_.look(bootMs());
    fault_ = view.fault;
    server_.send(event("state", view.documentText()), true);
}

// A monitor that falls silent sends nothing: that it is silent shows by looking.
void EventFeed::look() {
    if (board_.look(bootMs()).fault.isEmpty() != fault_.isEmpty())
        stateChanged();
    looks_ = (looks_ + 1) % kLooksABeat;
    if (looks_ == 0)
        server_.send(event("alive", "{}"), false);
}

} // namespace skyhold
