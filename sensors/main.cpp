// SPDX-License-Identifier: GPL-3.0-or-later
// skyhold-sensor: the sensor program for real devices.
#include "sensors/command_line.h"

#include <QCoreApplication>

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("skyhold-sensor"));
    return skyhold::runSensorProgram();
}
