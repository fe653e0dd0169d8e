// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/display.h"

#include <QLibrary>
#include <QString>

namespace skyhold {

bool displayReachable() {
    if (qEnvironmentVariableIsSet("QT_QPA_PLATFORM") ||
        !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        return true;
    if (qEnvironmentVariableIsEmpty("DISPLAY"))
        return false;

    using Connect = void* (*)(const char* name, int* screen);
    using HasError = int (*)(void* connection);
    using Disconnect = void (*)(void* connection);
    QLibrary xcb(QStringLiteral("xcb"), 1);
    const auto connect = reinterpret_cast<Connect>(xcb.resolve("xcb_connect"));
    const auto hasError = reinterpret_cast<HasError>(xcb.resolve("xcb_connection_has_error"));
    const auto disconnect = reinterpret_cast<Disconnect>(xcb.resolve("xcb_disconnect"));
    if (connect == nullptr || hasError == nullptr || disconnect == nullptr)
        return false;
    void* connection = connect(nullptr, nullptr);
    const bool reached = connection != nullptr && hasError(connection) == 0;
    disconnect(connection);
    return reached;
}

} // namespace skyhold
