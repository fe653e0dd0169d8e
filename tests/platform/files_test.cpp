#include "platform/files.h"
#include "platform/settings_store.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

class Files : public testing::Test {
  protected:
    void write(const QString& name, const QByteArray& bytes) {
        QFile file(folder_.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    QByteArray bytes(const QString& name) {
        QFile file(folder_.filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
    }
    QTemporaryDir folder_;
};

TEST_F(Files, readingNeverWaitsAndNeverReadsTooMuch) {
    write(u"page"_s, "0123456789");
    ASSERT_EQ(::mkfifo(folder_.filePath(u"pipe"_s).toLocal8Bit().constData(), 0600), 0);
    const struct {
        QString path;
        std::int64_t limit;
        ReadResult result;
    } cases[] = {
        {folder_.filePath(u"page"_s), 10, ReadResult::Ok},
        {folder_.filePath(u"page"_s), 9, ReadResult::TooLarge},
        {folder_.filePath(u"none"_s), 10, ReadResult::Missing},
        {folder_.filePath(u"page/below"_s), 10, ReadResult::Missing},
        {folder_.path(), 10, ReadResult::NotAFile},
        {folder_.filePath(u"pipe"_s), 10, ReadResult::NotAFile},
        {u"/dev/zero"_s, 10, ReadResult::NotAFile},
    };
    for (const auto& [path, limit, result] : cases) {
        const FileContents contents = readFile(path, limit);
        EXPECT_EQ(contents.result, result) << qPrintable(path);
        EXPECT_EQ(contents.bytes, result == ReadResult::Ok ? "0123456789" : "");
    }
}

TEST_F(Files, namesAreFoundWithoutRegardToCase) {
    write(u"Station[1].HTM"_s, "x");
    EXPECT_EQ(findFile(folder_.filePath(u"station[1].htm"_s)),
              folder_.filePath(u"Station[1].HTM"_s));
    EXPECT_EQ(findFile(folder_.path() + u"\\STATION[1].htm"_s),
              folder_.filePath(u"Station[1].HTM"_s));
    EXPECT_EQ(findFile(folder_.filePath(u"Station1.HTM"_s)), std::nullopt);
    EXPECT_EQ(findFile(u""_s), std::nullopt);
    EXPECT_EQ(joinPath(u"C:\\img\\"_s, u"a.png"_s), u"C:/img/a.png"_s);
}

TEST_F(Files, recordIsWrittenOverTheStart) {
    write(u"record"_s, "abcdefgh");
    EXPECT_TRUE(writeAtStart(folder_.filePath(u"record"_s), "1234"));
    EXPECT_EQ(bytes(u"record"_s), "1234efgh");
    EXPECT_TRUE(writeAtStart(folder_.filePath(u"new"_s), "1234"));
    EXPECT_EQ(bytes(u"new"_s), "1234");
    EXPECT_FALSE(writeAtStart(folder_.filePath(u"none/record"_s), "1234"));
    EXPECT_FALSE(writeAtStart(folder_.path(), "1234"));
    EXPECT_FALSE(writeAtStart(u"/dev/full"_s, "1234"));
}

TEST_F(Files, settingsAreTheOwnersAloneAndKeepWhatOthersWrote) {
    qputenv("XDG_CONFIG_HOME", folder_.path().toLocal8Bit());
    const QString path = folder_.filePath(u"Kiv/Test.ini"_s);
    {
        SettingsStore store(u"Test"_s);
        EXPECT_EQ(store.GetSetting(u"Setup"_s, u"Server"_s, u"none"_s), u"none"_s);
        store.SaveSetting(u"Setup"_s, u"Password"_s, u"a, b; \"c\" %D \\ é"_s);
        EXPECT_TRUE(store.flush());
    }
    EXPECT_EQ(QFileInfo(path).permissions() & QFileDevice::Permissions(0x0077),
              QFileDevice::Permissions());
    QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                    QFileDevice::ReadOther);
    SettingsStore store(u"Test"_s);
    EXPECT_FALSE(QFileInfo(path).permissions().testFlag(QFileDevice::ReadOther));
    EXPECT_EQ(store.GetSetting(u"Setup"_s, u"Password"_s, {}), u"a, b; \"c\" %D \\ é"_s);

    // Another program (the uploader) writes into the same file.
    SettingsStore other(u"Test"_s);
    other.saveNow(u"Window"_s, u"Running"_s, u"1"_s);
    store.saveNow(u"Setup"_s, u"Server"_s, u"host"_s);
    SettingsStore again(u"Test"_s);
    EXPECT_EQ(again.GetSetting(u"Window"_s, u"Running"_s, {}), u"1"_s);
    EXPECT_EQ(again.GetSetting(u"Setup"_s, u"Server"_s, {}), u"host"_s);
}

} // namespace
} // namespace skyhold
