// SPDX-License-Identifier: GPL-3.0-or-later
// Recorded nights: whatever is made of the program inside, what it says, sounds and writes in the
// course of a night stays the same.
//
// Written anew with SKYHOLD_NIGHTS_WRITE=1 nights_test, after which `git diff` shows what changed.
// SKYHOLD_NIGHTS=FOLDER plays the nights of another folder.
#include "night.h"

#include "conditions/rules_of.h"
#include "history/reader.h"
#include "judge/replay.h"

#include <QJsonArray>

namespace skyhold {
namespace {

QString folder() {
    return qEnvironmentVariable("SKYHOLD_NIGHTS", QStringLiteral(SKYHOLD_NIGHTS_FOLDER));
}

std::vector<std::string> nights() {
    std::vector<std::string> names;
    for (const QString& file : QDir(folder()).entryList({u"*.night"_s}))
        names.push_back(file.chopped(6).toStdString());
    return names;
}

QByteArray contents(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void write(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
}

using Nights = Night;

TEST_P(Nights, comeOutAsRecorded) {
    const QString name = QString::fromStdString(GetParam());
    const QByteArray actual = play(contents(folder() + u'/' + name + u".night"_s)).toUtf8();
    const QString expectedPath = folder() + u'/' + name + u".expected"_s;
    if (qEnvironmentVariableIsSet("SKYHOLD_NIGHTS_WRITE"))
        return write(expectedPath, actual);

    const QString actualPath = QStringLiteral(SKYHOLD_NIGHTS_ACTUAL) + u'/' + name + u".actual"_s;
    QFile::remove(actualPath);
    const QByteArray expected = contents(expectedPath);
    if (actual == expected)
        return;
    write(actualPath, actual);
    const QList<QByteArray> is = actual.split('\n');
    const QList<QByteArray> was = expected.split('\n');
    qsizetype line = 0;
    while (line < is.size() && line < was.size() && is[line] == was[line])
        ++line;
    FAIL() << qPrintable(actualPath) << ", line " << line + 1 << ":\n"
           << is.value(line).toStdString() << "\nbut expected was\n"
           << was.value(line).toStdString();
}

// What the history keeps of a night is enough to judge it again, and nothing comes out otherwise.
using KeptNight = Night;

TEST_P(KeptNight, isJudgedAgainAsItWas) {
    constexpr int kStepSeconds = 600; // of the night
    const QString path = folder_->filePath(u"history.db"_s);
    core_->history.begin(path, {.cycleDays = 3'660});
    play(contents(folder() + u'/' + QString::fromStdString(GetParam()) + u".night"_s));
    ASSERT_TRUE(core_->history.end());

    HistoryReader reader(path);
    Replay replay(rulesOf(records().conditions));
    Observation observation;
    int cycles = 0;
    int closures = 0;
    bool before = true;
    reader.eachCycle(kBeginning, kEndOfTime, [&](const KeptCycle& cycle) {
        putInto(observation, cycle);
        replay.cycle(observation, cycle.atMs, kStepSeconds, cycle.number == 1);
        EXPECT_EQ(replay.unsafe(), cycle.unsafe()) << "cycle " << cycle.number;
        closures += !before && cycle.unsafe() ? 1 : 0;
        before = cycle.unsafe();
        return ++cycles > 0;
    });
    EXPECT_EQ(reader.fault(), QString());
    EXPECT_GT(cycles, 200);
    EXPECT_GT(closures, 0);
    EXPECT_EQ(replay.outcome().closures, closures);
    // The verdicts of the night in words, as `skyholdctl history` shows them.
    for (const VerdictPeriod& period : reader.readPeriods(kBeginning, kEndOfTime)) {
        EXPECT_EQ(period.changes.front().detail[u"causes"_s].toArray().isEmpty(),
                  period.verdict == u"safe");
    }
}

INSTANTIATE_TEST_SUITE_P(Recorded, KeptNight, testing::Values("newark_blizzard"),
                         [](const auto& night) { return std::string(night.param); });

INSTANTIATE_TEST_SUITE_P(Recorded, Nights, testing::ValuesIn(nights()),
                         [](const auto& night) { return night.param; });

} // namespace
} // namespace skyhold
