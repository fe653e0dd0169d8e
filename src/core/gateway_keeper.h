// SPDX-License-Identifier: GPL-3.0-or-later
// Runs the gateway beside the monitor while the settings ask for it: starts it, starts it again
// when it ends or a setting changes, and ends it. The monitor itself opens no port.
#pragma once

#include "records/network_controls.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QTimer>

namespace skyhold {

// Its command line. The password goes through its environment: others can read command lines.
QStringList gatewayArguments(const NetworkControls& network);

// Seconds before the next start, after `failures` ends in a row: 1, 2, 4, ... 60.
int gatewayPause(int failures);

class GatewayKeeper {
  public:
    // Follows the settings as long as it lives; `network` outlives it. `program` is a path.
    GatewayKeeper(NetworkControls& network, const QString& program);
    // Ends the gateway, waiting for a moment.
    ~GatewayKeeper();
    GatewayKeeper(const GatewayKeeper&) = delete;
    GatewayKeeper& operator=(const GatewayKeeper&) = delete;

  private:
    void followSettings();
    void apply();
    void begin();
    void start();
    void ended();
    void readOutput();
    void readErrors();
    void show(GatewayState state, const QString& text);

    NetworkControls& network_;
    QString program_;
    QProcess process_;
    QTimer changed_;      // runs while settings are still being typed
    QTimer again_;        // runs until the next start
    QTimer patience_;     // runs until one that does not end is killed
    bool ending_ = false; // it was asked to end
    QElapsedTimer served_;
    QString lastError_;
    int failures_ = 0;
    std::vector<QPropertyNotifier> followed_;
};

} // namespace skyhold
