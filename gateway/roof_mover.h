// SPDX-License-Identifier: GPL-3.0-or-later
// Has the monitor move the roof's switch, as any client of its automation object can.
#pragma once

#include "gateway/alpaca.h"
#include "gateway/follower.h"

namespace skyhold {

// Calls may come in any thread; they are made in that of `follower`, one after the other.
class RoofMover : public QObject {
  public:
    RoofMover(const Follower& follower, const StateBoard& board);
    MoveRoof mover();

  private:
    struct Order {
        bool open = false;
        std::function<void(const QString&)> done;
    };
    void dropOpenings();
    QString refusal() const;
    void next();
    void create();
    void invoke(const QString& instance, const QString& member, unsigned use,
                const QVariantList& arguments,
                const std::function<void(const QDBusMessage&)>& then);
    void checkRole(const QString& instance);
    void end(const QString& instance, const QString& fault);

    const Follower& follower_;
    const StateBoard& board_;
    QList<Order> orders_; // the first is under way
};

} // namespace skyhold
