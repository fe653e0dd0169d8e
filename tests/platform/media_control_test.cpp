#include "platform/media_control.h"

#include "support/eventually.h"
#include "support/test_folder.h"

#include <csignal>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

// In place of the player a script, which leaves its process id and its arguments in the file
// "told" beside it.
struct SoundPlayer : testing::Test {
    void write(const QByteArray& script) const {
        folder.writeProgram(u"player"_s, "cd \"${0%/*}\"\n"
                                         "printf '%s\\n' $$ \"$@\" >new && mv new told\n" +
                                             script + "\n");
    }
    // What the script was told: its process id, then the arguments.
    QStringList told() const {
        EXPECT_TRUE(eventually([this] { return QFile::exists(folder.filePath(u"told"_s)); }));
        const QStringList lines = QString::fromUtf8(folder.read(u"told"_s)).trimmed().split(u'\n');
        QFile::remove(folder.filePath(u"told"_s));
        return lines;
    }
    static bool runs(const QString& pid) { return ::kill(pid.toInt(), 0) == 0; }

    bool open() { return media->send(mediaOpenCommand(sound)) == 0; }
    bool send(const QString& command) { return media->send(command) == 0; }
    QString mode() {
        QString answer;
        return media->send(kMediaMode, &answer, 9) == 0 ? answer : u"refused"_s;
    }
    bool stops() {
        return eventually([this] { return mode() == u"stopped"_s; });
    }

    TestFolder folder;
    const QString program = folder.filePath(u"player"_s);
    const QString sound = folder.write(u"a bell.wav"_s);
    QStringList reports;
    std::unique_ptr<MediaControl> media = std::make_unique<SoundPlayerProgram>(
        program, [this](const QString& reason) { reports.append(reason); });
};

TEST_F(SoundPlayer, PlaysByAProcessThatIsEndedWithTheSound) {
    write("exec sleep 1000");
    EXPECT_FALSE(send(kMediaPlay)) << "nothing is open";
    EXPECT_FALSE(send(kMediaStop));
    EXPECT_EQ(mode(), u"refused"_s);
    EXPECT_FALSE(send(mediaOpenCommand(folder.filePath(u"missing.wav"_s))));
    EXPECT_FALSE(send(mediaOpenCommand(folder.path())));

    ASSERT_TRUE(open());
    EXPECT_FALSE(open()) << "is open already";
    EXPECT_FALSE(send(u"record KivNubiloPlayer"_s));
    EXPECT_EQ(mode(), u"stopped"_s);
    EXPECT_FALSE(QFile::exists(folder.filePath(u"told"_s))) << "no process for an open alone";

    EXPECT_TRUE(send(kMediaPlayRepeat));
    EXPECT_EQ(mode(), u"playing"_s);
    const QStringList repeated = told();
    EXPECT_EQ(repeated.sliced(1), (QStringList{u"--repeat"_s, sound}));

    // From the beginning again, in place of the first.
    EXPECT_TRUE(send(kMediaPlay));
    const QStringList once = told();
    EXPECT_EQ(once.sliced(1), QStringList{sound});
    EXPECT_TRUE(eventually([&] { return !runs(repeated[0]); }));
    EXPECT_TRUE(runs(once[0]));

    EXPECT_TRUE(send(kMediaStop));
    EXPECT_EQ(mode(), u"stopped"_s);
    EXPECT_TRUE(eventually([&] { return !runs(once[0]); }));
    EXPECT_TRUE(send(kMediaClose));
    EXPECT_EQ(mode(), u"refused"_s);

    // The end of the monitor is the end of the sound.
    EXPECT_TRUE(open() && send(kMediaPlay));
    const QString pid = told()[0];
    media.reset();
    EXPECT_FALSE(runs(pid));
    EXPECT_EQ(reports, QStringList());
}

TEST_F(SoundPlayer, ReportsEachReasonForSilenceOnceAndEverySilence) {
    int silences = 0;
    media->silent = [&](const QString&) {
        ++silences;
    };
    const struct {
        const char* what;
        QByteArray script;
        QString reason;
    } rows[] = {
        {"played to its end", "exit 0", {}},
        {"no device", "echo no audio device; exit 1", u"no audio device"_s},
        {"and again", "echo no audio device; exit 1", {}},
        {"broken file", "echo bell: not a sound; echo more; exit 1", u"bell: not a sound"_s},
        {"decoder breaks", "kill -SEGV $$", sound + u": the sound player crashed"_s},
        {"played again", "exit 0", {}},
        {"no player", {}, program + u" cannot be started"_s},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        row.script.isEmpty() ? void(QFile::remove(program)) : write(row.script);
        reports.clear();
        EXPECT_TRUE(open() && send(kMediaPlay));
        EXPECT_TRUE(stops());
        EXPECT_TRUE(send(kMediaClose));
        EXPECT_EQ(reports, row.reason.isEmpty() ? QStringList() : QStringList{row.reason});
    }
    EXPECT_EQ(silences, 5);
}

} // namespace

} // namespace skyhold
