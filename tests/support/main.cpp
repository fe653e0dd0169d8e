// SPDX-License-Identifier: GPL-3.0-or-later
// Runs the tests of a room without display, with the "C" locale whatever the machine's.
#include <QGuiApplication>
#include <QLocale>

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QLocale::setDefault(QLocale::c());
    testing::InitGoogleTest(&argc, argv);
    const QGuiApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
