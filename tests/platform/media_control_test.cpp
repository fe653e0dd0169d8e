#include "platform/media_control.h"

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

#include <csignal>
#include <functional>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

// In place of the player a script, which leaves its process id and its arguments in the file
// "told" beside it.
struct SoundPlayer : testing::Test {
    SoundPlayer() {
        QFile file(sound);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    }

    void write(const QByteArray& script) const {
        QFile file(program);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write("#!/bin/sh\n"
                   "cd \"${0%/*}\"\n"
                   "printf '%s\\n' $$ \"$@\" >new && mv new told\n" +
                   script + "\n");
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    // Serves events until the condition holds.
    static bool eventually(const std::function<bool()>& holds) {
        const QDeadlineTimer deadline(20'000);
        QEventLoop loop;
        QTimer poll;
        QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
            if (holds() || deadline.hasExpired())
                loop.quit();
        });
        poll.start(2);
        loop.exec();
        return holds();
    }

    // What the script was told: its process id, then the arguments.
    QStringList told() const {
        QFile file(folder.filePath(u"told"_s));
        EXPECT_TRUE(eventually([&] { return file.exists(); }));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        const QStringList lines = QString::fromUtf8(file.readAll()).trimmed().split(u'\n');
        file.remove();
        return lines;
    }

    static bool runs(const QString& pid) { return ::kill(pid.toInt(), 0) == 0; }

    QString mode() {
        QString answer;
        return media->send(kMediaMode, &answer, 9) == 0 ? answer : u"refused"_s;
    }

    QTemporaryDir folder;
    QString program = folder.filePath(u"player"_s);
    QString sound = folder.filePath(u"a bell.wav"_s);
    QStringList reports;
    std::unique_ptr<MediaControl> media = std::make_unique<SoundPlayerProgram>(
        program, [this](const QString& reason) { reports.append(reason); });
};

TEST_F(SoundPlayer, PlaysByAProcessThatIsEndedWithTheSound) {
    write("exec sleep 1000");
    EXPECT_NE(media->send(kMediaPlay), 0) << "nothing is open";
    EXPECT_NE(media->send(kMediaStop), 0);
    EXPECT_EQ(mode(), u"refused"_s);
    EXPECT_NE(media->send(mediaOpenCommand(folder.filePath(u"missing.wav"_s))), 0);
    EXPECT_NE(media->send(mediaOpenCommand(folder.path())), 0);

    ASSERT_EQ(media->send(mediaOpenCommand(sound)), 0);
    EXPECT_NE(media->send(mediaOpenCommand(sound)), 0) << "is open already";
    EXPECT_NE(media->send(u"record KivNubiloPlayer"_s), 0);
    EXPECT_EQ(mode(), u"stopped"_s);
    EXPECT_FALSE(QFile::exists(folder.filePath(u"told"_s))) << "no process for an open alone";

    EXPECT_EQ(media->send(kMediaPlayRepeat), 0);
    EXPECT_EQ(mode(), u"playing"_s);
    const QStringList repeated = told();
    EXPECT_EQ(repeated.sliced(1), (QStringList{u"--repeat"_s, sound}));

    // From the beginning again, in place of the first.
    EXPECT_EQ(media->send(kMediaPlay), 0);
    const QStringList once = told();
    EXPECT_EQ(once.sliced(1), QStringList{sound});
    EXPECT_TRUE(eventually([&] { return !runs(repeated[0]); }));
    EXPECT_TRUE(runs(once[0]));

    EXPECT_EQ(media->send(kMediaStop), 0);
    EXPECT_EQ(mode(), u"stopped"_s);
    EXPECT_TRUE(eventually([&] { return !runs(once[0]); }));
    EXPECT_EQ(media->send(kMediaClose), 0);
    EXPECT_EQ(mode(), u"refused"_s);

    // The end of the monitor is the end of the sound.
    EXPECT_EQ(media->send(mediaOpenCommand(sound)), 0);
    EXPECT_EQ(media->send(kMediaPlay), 0);
    const QString pid = told()[0];
    media.reset();
    EXPECT_FALSE(runs(pid));
    EXPECT_EQ(reports, QStringList());
}

TEST_F(SoundPlayer, TellsEachReasonForSilenceOnce) {
    const struct {
        const char* what;
        QByteArray script;
        QString reason;
    } rows[] = {
        {"played to its end", "exit 0", {}},
        {"no device", "echo there is no audio device; exit 1", u"there is no audio device"_s},
        {"and again", "echo there is no audio device; exit 1", {}},
        {"broken file", "echo bell: not a sound; echo more; exit 1", u"bell: not a sound"_s},
        {"decoder breaks", "kill -SEGV $$", sound + u": the sound player broke off"_s},
        {"played again", "exit 0", {}},
    };
    QStringList expected;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        write(row.script);
        ASSERT_EQ(media->send(mediaOpenCommand(sound)), 0);
        EXPECT_EQ(media->send(kMediaPlay), 0);
        EXPECT_TRUE(eventually([&] { return mode() == u"stopped"_s; }));
        EXPECT_EQ(media->send(kMediaClose), 0);
        if (!row.reason.isEmpty())
            expected.append(row.reason);
        EXPECT_EQ(reports, expected);
    }
    ASSERT_TRUE(QFile::remove(program));
    ASSERT_EQ(media->send(mediaOpenCommand(sound)), 0);
    EXPECT_EQ(media->send(kMediaPlay), 0);
    EXPECT_TRUE(eventually([&] { return mode() == u"stopped"_s; }));
    EXPECT_EQ(reports, expected + QStringList{program + u" cannot be started"_s});
}

} // namespace

} // namespace skyhold
