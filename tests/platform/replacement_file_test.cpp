#include "platform/replacement_file.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

TEST(ReplacementFile, OldContentsStayUntilTheNewAreWhole) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"page.txt"_s);
    const auto read = [&path] {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("none");
    };
    {
        ReplacementFile file(path);
        ASSERT_TRUE(file.write("old"));
        EXPECT_EQ(read(), "none");
        ASSERT_TRUE(file.commit());
        EXPECT_EQ(read(), "old");
    }
    {
        ReplacementFile file(path);
        // As a library does that opens by name.
        QFile writer(QFile::decodeName(file.writerPath()));
        ASSERT_TRUE(writer.open(QIODevice::WriteOnly | QIODevice::Truncate));
        writer.write("new and longer");
        writer.close();
        EXPECT_EQ(file.contents(), "new and longer");
        EXPECT_EQ(read(), "old");
        ASSERT_TRUE(file.commit());
        EXPECT_EQ(read(), "new and longer");
    }
    {
        ReplacementFile file(path);
        ASSERT_TRUE(file.write("given up"));
    }
    EXPECT_EQ(read(), "new and longer");
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden),
              QStringList{u"page.txt"_s});

    ReplacementFile nowhere(folder.filePath(u"none/page.txt"_s));
    EXPECT_FALSE(nowhere.isOpen());
    EXPECT_FALSE(nowhere.commit());
}

} // namespace
} // namespace skyhold
