// SPDX-License-Identifier: GPL-3.0-or-later
// Prints docs/automation.md, or with --xml docs/Kiv_Skyhold.Nubilo.xml.
#include "automation/description.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const bool xml = QCoreApplication::arguments().contains(QStringLiteral("--xml"));
    const QByteArray text =
        (xml ? skyhold::interfaceDescription() : skyhold::automationReference()).toUtf8();
    return std::fwrite(text.constData(), 1, static_cast<std::size_t>(text.size()), stdout) ==
                   static_cast<std::size_t>(text.size())
               ? 0
               : 1;
}
