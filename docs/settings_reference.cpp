// SPDX-License-Identifier: GPL-3.0-or-later
// Prints docs/settings.md.
#include "settings/reference_page.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const QByteArray page = skyhold::settingsReference().toUtf8();
    return std::fwrite(page.constData(), 1, static_cast<std::size_t>(page.size()), stdout) ==
                   static_cast<std::size_t>(page.size())
               ? 0
               : 1;
}
