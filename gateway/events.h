// SPDX-License-Identifier: GPL-3.0-or-later
// The events that a page follows: every state document, every loss, and a beat that shows that the
// connection is alive.
#pragma once

#include "gateway/http_server.h"
#include "gateway/state.h"

#include <QTimer>

namespace skyhold {

class EventFeed {
  public:
    EventFeed(const StateBoard& board, HttpServer& server);
    void stateChanged();

  private:
    void look();

    const StateBoard& board_;
    HttpServer& server_;
    QTimer timer_;
    QString fault_; // that was sent
    int looks_ = 0;
};

} // namespace skyhold
