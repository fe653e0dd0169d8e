// SPDX-License-Identifier: GPL-3.0-or-later
// Every input of fuzz/corpus, those that once broke a rule among them, through its target.
#include "target.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

namespace skyhold::fuzz {

void broken(const char* rule) {
    ADD_FAILURE() << rule;
}

namespace {

class Replay : public testing::TestWithParam<Target> {};

TEST_P(Replay, KeepsEveryRule) {
    const QDir folder(QStringLiteral(SKYHOLD_FUZZ_CORPUS) + u'/' +
                      QString::fromLatin1(GetParam().name));
    const QStringList names = folder.entryList(QDir::Files);
    ASSERT_FALSE(names.isEmpty()) << qPrintable(folder.path());
    for (const QString& name : names) {
        SCOPED_TRACE(qPrintable(folder.filePath(name)));
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        GetParam().run(file.readAll());
    }
}

INSTANTIATE_TEST_SUITE_P(Targets, Replay,
                         testing::Values(kHtmlTable, kCsvTable, kStationValue, kStationFile,
                                         kSector, kNumberBox, kSettingsFile, kAutomationValue,
                                         kAutomationMembers, kUpdateFiles, kIndiStream,
                                         kSensorValues, kGatewayRequests),
                         [](const auto& target) { return std::string(target.param.name); });

} // namespace
} // namespace skyhold::fuzz
