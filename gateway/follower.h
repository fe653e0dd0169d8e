// SPDX-License-Identifier: GPL-3.0-or-later
// Follows the monitor on the session bus and publishes what it says.
#pragma once

#include "bus/session_bus.h"
#include "gateway/state.h"

#include <QDBusMessage>
#include <QObject>
#include <QTimer>

#include <functional>

namespace skyhold {

class Follower : public QObject {
    Q_OBJECT

  public:
    // `changed` is called after every document and every loss.
    Follower(StateBoard& board, std::function<void()> changed);

    // After each round of asking the monitor, whatever came of it; `state` is a line for people.
    std::function<void(const QString& state)> roundDone = [](const QString&) {
    };

    const QDBusConnection& bus() const { return bus_.connection(); }

  private Q_SLOTS:
    void onDocument(const QString& text);
    void onOwnerChange(const QString& name, const QString& before, const QString& after);

  private:
    void begin();
    void lose(const QString& why);
    void take(const QByteArray& text);
    void readState();
    void probe();
    void endRound();

    StateBoard& board_;
    std::function<void()> changed_;
    SessionBus bus_;
    QTimer probes_;
    bool probing_ = false;
    bool present_ = false;    // the monitor has its name on the bus
    QJsonObject last_;        // the last document, to see a new cycle
    std::int64_t lastMs_ = 0; // when its cycle was first heard
};

} // namespace skyhold
