#include "platform/files.h"

#include "platform/replacement_file.h"
#include "platform/settings_store.h"
#include "support/test_folder.h"

#include <QFileInfo>

#include <sys/stat.h>

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

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

TEST_F(Files, settingsAreTheOwnersAloneAndKeepWhatOthersWrote) {
    const QString ini = path(u"Kiv/Test.ini"_s);
    const QString password = u"a, b; \"c\" %D \\ é"_s;
    const auto get = [](const QString& section, const QString& key) {
        return SettingsStore(u"Test"_s).GetSetting(section, key, u"none"_s);
    };
    const auto othersMay = [&ini] {
        return QFileInfo(ini).permissions() & QFileDevice::Permissions(0x0077);
    };
    EXPECT_EQ(get(u"Setup"_s, u"Server"_s), u"none"_s);
    SettingsStore first(u"Test"_s);
    first.SaveSetting(u"Setup"_s, u"Password"_s, password);
    EXPECT_TRUE(first.flush());
    EXPECT_FALSE(othersMay());
    ASSERT_TRUE(
        QFile::setPermissions(ini, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadOther));
    SettingsStore store(u"Test"_s);
    EXPECT_FALSE(othersMay());
    EXPECT_EQ(get(u"Setup"_s, u"Password"_s), password);

    // Another program (the uploader) writes into the same file.
    SettingsStore(u"Test"_s).saveNow(u"Window"_s, u"Running"_s, u"1"_s);
    store.saveNow(u"Setup"_s, u"Server"_s, u"host"_s);
    EXPECT_EQ(get(u"Window"_s, u"Running"_s), u"1"_s);
    EXPECT_EQ(get(u"Setup"_s, u"Server"_s), u"host"_s);
}

} // namespace
} // namespace skyhold
