// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/files.h"
#include "platform/line_file.h"
#include "platform/replacement_file.h"
#include "platform/settings_store.h"
#include "support/test_folder.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {
namespace {

struct Files : testing::Test {
    QString path(const QString& name) const { return folder.filePath(name); }
    SettingsFolder folder;
};

TEST_F(Files, readingNeverWaitsAndNeverReadsTooMuch) {
    const QString page = folder.write(u"page"_s, "0123456789");
    ASSERT_EQ(::mkfifo(qPrintable(path(u"pipe"_s)), 0600), 0);
    const struct {
        QString path;
        std::int64_t limit;
        ReadResult result;
    } cases[] = {
        {page, 10, ReadResult::Ok},
        {page, 9, ReadResult::TooLarge},
        {path(u"none"_s), 10, ReadResult::Missing},
        {path(u"page/below"_s), 10, ReadResult::Missing},
        {folder.path(), 10, ReadResult::NotAFile},
        {path(u"pipe"_s), 10, ReadResult::NotAFile},
        {u"/dev/zero"_s, 10, ReadResult::NotAFile},
    };
    for (const auto& [name, limit, result] : cases) {
        const FileContents contents = readFile(name, limit);
        EXPECT_EQ(contents.result, result) << qPrintable(name);
        EXPECT_EQ(contents.bytes, result == ReadResult::Ok ? "0123456789" : "");
    }
}

TEST_F(Files, namesAreFoundWithoutRegardToCase) {
    const QString station = folder.write(u"Station[1].HTM"_s);
    EXPECT_EQ(findFile(path(u"station[1].htm"_s)), station);
    EXPECT_EQ(findFile(folder.path() + u"\\STATION[1].htm"_s), station);
    EXPECT_EQ(findFile(path(u"Station1.HTM"_s)), std::nullopt);
    EXPECT_EQ(findFile(u""_s), std::nullopt);
    EXPECT_EQ(joinPath(u"C:\\img\\"_s, u"a.png"_s), u"C:/img/a.png"_s);
}

TEST_F(Files, recordIsWrittenOverTheStart) {
    folder.write(u"record"_s, "abcdefgh");
    for (const auto& [name, bytes] :
         {std::pair{u"record"_s, "1234efgh"_ba}, {u"new"_s, "1234"_ba}}) {
        EXPECT_TRUE(writeAtStart(path(name), "1234"));
        EXPECT_EQ(folder.read(name), bytes);
    }
    for (const QString& place : {path(u"none/record"_s), folder.path(), u"/dev/full"_s})
        EXPECT_FALSE(writeAtStart(place, "1234")) << qPrintable(place);
}

TEST_F(Files, replacementKeepsTheOldContentsUntilTheNewAreWhole) {
    const auto read = [this] {
        return folder.read(u"page.txt"_s);
    };
    {
        ReplacementFile file(path(u"page.txt"_s));
        ASSERT_TRUE(file.write("old"));
        EXPECT_EQ(read(), "no file");
        ASSERT_TRUE(file.commit());
        EXPECT_EQ(read(), "old");
    }
    {
        ReplacementFile file(path(u"page.txt"_s));
        // As a library does that opens by name.
        QFile writer(QFile::decodeName(file.writerPath()));
        ASSERT_TRUE(writer.open(QIODevice::WriteOnly | QIODevice::Truncate));
        writer.write("new and longer");
        writer.close();
        EXPECT_EQ(file.contents(), "new and longer");
        EXPECT_EQ(read(), "old");
        ASSERT_TRUE(file.commit());
    }
    ASSERT_TRUE(ReplacementFile(path(u"page.txt"_s)).write("given up"));
    EXPECT_EQ(read(), "new and longer");
    EXPECT_EQ(folder.names(), QStringList{u"page.txt"_s});

    ReplacementFile nowhere(path(u"none/page.txt"_s));
    EXPECT_FALSE(nowhere.isOpen());
    EXPECT_FALSE(nowhere.commit());
}

// Whose files are written: not what a link leads to that somebody else may have made.

class OwnFiles : public testing::Test {
  protected:
    void SetUp() override { qputenv("XDG_CONFIG_HOME", folder_.path().toLocal8Bit()); }

    QString path(const QString& name) const { return folder_.filePath(name); }
    QStringList names(const QString& folder) const {
        return QDir(path(folder)).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }
    void write(const QString& name, const QByteArray& bytes) const {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    QByteArray read(const QString& name) const {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
    }
    void setMode(const QString& name, mode_t mode) const {
        ASSERT_EQ(::chmod(qPrintable(path(name)), mode), 0);
    }
    mode_t mode(const QString& name) const {
        struct stat status {};
        return ::stat(qPrintable(path(name)), &status) == 0 ? status.st_mode & 0777 : 0;
    }
    // What is said while the settings are opened and saved.
    static QString notes() {
        testing::internal::CaptureStderr();
        SettingsStore(u"Test"_s).saveNow(u"Setup"_s, u"Password"_s, u"secret"_s);
        return QString::fromStdString(testing::internal::GetCapturedStderr());
    }

    QTemporaryDir folder_;
};

TEST_F(OwnFiles, aLinkInTheirPlaceIsNotFollowed) {
    write(u"victim"_s, "precious");
    const QString link = path(u"link"_s);
    const auto replaced = [&link](const QByteArray& bytes) {
        ReplacementFile file(link);
        return file.write(bytes) && file.commit();
    };
    for (const QString& target : {path(u"victim"_s), path(u"nowhere"_s), u"/dev/null"_s}) {
        ASSERT_TRUE(QFile::link(target, link));
        EXPECT_FALSE(writeAtStart(link, "mine")) << qPrintable(target);
        EXPECT_FALSE(LineFile().open(link, false)) << qPrintable(target);
        EXPECT_FALSE(LineFile().open(link, true)) << qPrintable(target);
        EXPECT_TRUE(replaced("mine"));
        EXPECT_EQ(read(u"link"_s), "mine");
        EXPECT_EQ(names({}), (QStringList{u"link"_s, u"victim"_s}));
        EXPECT_EQ(read(u"victim"_s), "precious");
        QFile::remove(link);
    }
}

TEST_F(OwnFiles, whatAKilledProgramLeftIsRemoved) {
    const QStringList others{u".page.txt.abc1ef"_s, u".page.txt.abcdefg"_s, u".pageXtxt.abcdef"_s};
    for (const QString& name : others + QStringList{u".page.txt.abCDef"_s})
        write(name, "half");
    ReplacementFile::removeLeftovers(path(u"page.txt"_s));
    EXPECT_EQ(names({}), others);
}

TEST_F(OwnFiles, settingsAreTakenFromEverybodyElse) {
    EXPECT_EQ(notes(), QString());
    EXPECT_EQ(mode(u"Kiv"_s), 0700U);
    EXPECT_EQ(mode(u"Kiv/Test.ini"_s), 0600U);

    setMode(u"Kiv"_s, 0755);
    setMode(u"Kiv/Test.ini"_s, 0644);
    EXPECT_EQ(notes().count(u"was open to other users"_s), 2);
    EXPECT_EQ(mode(u"Kiv"_s), 0700U);
    EXPECT_EQ(mode(u"Kiv/Test.ini"_s), 0600U);
    EXPECT_EQ(notes(), QString());

    write(u"Kiv/Test.ini.abcXYZ"_s, "half"); // by a program that was killed while it saved
    write(u"Kiv/Test.ini.whole.abcXYZ"_s, "half");
    write(u"Kiv/Test.ini.backup1"_s, "mine");
    EXPECT_EQ(notes(), QString());
    EXPECT_EQ(names(u"Kiv"_s), (QStringList{u"Test.ini"_s, u"Test.ini.backup1"_s}));
}

TEST_F(OwnFiles, aLinkToSettingsMustBeTheUsersOwnWork) {
    EXPECT_EQ(notes(), QString());
    const struct {
        const char* what;
        QString target;
        mode_t folder;
        bool followed;
    } cases[] = {
        {"others could have made it", path(u"page"_s), 0777, false},
        {"the group could have made it", path(u"page"_s), 0770, false},
        {"a device", u"/dev/null"_s, 0700, false},
        {"nothing there", path(u"nowhere"_s), 0700, false},
        {"the user's own", path(u"page"_s), 0700, true},
    };
    for (const auto& [what, target, folder, followed] : cases) {
        QFile::remove(path(u"Kiv/Test.ini"_s));
        ASSERT_TRUE(QFile::link(target, path(u"Kiv/Test.ini"_s)));
        ASSERT_TRUE(QFile::link(path(u"page"_s), path(u"Kiv/Other.ini"_s)));
        write(u"page"_s, "[Setup]\nServer=here\n");
        setMode(u"page"_s, 0644);
        setMode(u"Kiv"_s, folder);
        const bool open = folder != 0700;
        EXPECT_EQ(notes().count(u"left alone"_s), !followed + open) << what;
        EXPECT_EQ(QFile::remove(path(u"Kiv/Other.ini"_s)), !open) << what;
        EXPECT_EQ(mode(u"page"_s), followed ? 0600U : 0644U) << what;
        EXPECT_EQ(read(u"page"_s) == "[Setup]\nServer=here\n", !followed) << what;
        EXPECT_EQ(SettingsStore(u"Test"_s).GetSetting(u"Setup"_s, u"Server"_s, u"none"_s),
                  followed ? u"here"_s : u"none"_s)
            << what;
        EXPECT_FALSE(QFile::exists(path(u"nowhere"_s)));
    }
}

} // namespace
} // namespace skyhold
