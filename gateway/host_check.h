// SPDX-License-Identifier: GPL-3.0-or-later
// Which names the gateway goes by. A web page of somebody else's can have its own name lead to this
// computer and so read what is for this computer alone; what is asked for under a foreign name is
// refused. An address is no such name.
#pragma once

#include <QByteArray>
#include <QList>

namespace skyhold {

// The name or address of "name", "name:port", "1.2.3.4:80", "[::1]:80"; empty when it is none.
QByteArray hostName(const QByteArray& header);

class HostCheck {
  public:
    // The computer's own name counts, plain and with ".local"; `more` are others, in any case.
    explicit HostCheck(const QList<QByteArray>& more);
    bool allows(const QByteArray& header) const;
    // Whether a page from `origin` is one of ours; a program that is no browser sends none.
    bool allowsOrigin(const QByteArray& origin, const QByteArray& host) const;

  private:
    QList<QByteArray> names_; // in lower case
};

} // namespace skyhold
