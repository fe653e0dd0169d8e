#include "platform/settings_copy.h"

#include "platform/settings_text.h"
#include "support/test_folder.h"

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

const QString kName = u"Kiv_Skyhold.ini"_s;
const QMap<QString, QString> kTexts{
    {u"Description/WindCalm"_s, u"1"_s}, {u"Limit/DewLow"_s, u"3"_s},
    {u"Limit/WindCalm"_s, u"12"_s},      {u"Setup/Password"_s, u"a=b; [c]"_s},
    {u"Window/Left"_s, u"1"_s},          {u"Window/Top"_s, u"1280"_s}};
const QByteArray kWhole = settingsBytes(kTexts);
const QByteArray kMark = "\n[End]\nWhole=1\n";

TEST(SettingsCopy, FileCutAtAnyByteIsCompleted) {
    const TestFolder folder;
    const QString path = folder.write(kName, kWhole);
    ASSERT_TRUE(writeWholeCopy(path));
    // A piece of the mark lacks nothing else.
    const qsizetype keys = kWhole.size() - kMark.size();
    for (qsizetype size = 0; size < kWhole.size() - 1; ++size) {
        SCOPED_TRACE(size);
        for (const QByteArray& lost : {QByteArray(), QByteArray(kWhole.size() - size, '\0')}) {
            folder.write(kName, kWhole.left(size) + lost);
            EXPECT_EQ(completeCutSettings(path).isEmpty(), size >= keys);
            EXPECT_EQ(folder.read(kName), kWhole);
            EXPECT_EQ(completeCutSettings(path), QStringList());
        }
    }
}

TEST(SettingsCopy, OnlyWhatStoodBehindTheCutComesBack) {
    const TestFolder folder;
    const QString path = folder.write(kName, kWhole);
    ASSERT_TRUE(writeWholeCopy(path));
    // The user had taken out one limit and changed another; the file of that was cut.
    folder.write(kName, "[Limit]\nWindCalm=7\n\n[Setup]\nPassword=other\n\n[Window]\nLe");
    EXPECT_EQ(completeCutSettings(path), (QStringList{u"Window/Left"_s, u"Window/Top"_s}));
    EXPECT_EQ(folder.read(kName), settingsBytes({{u"Limit/WindCalm"_s, u"7"_s},
                                                 {u"Setup/Password"_s, u"other"_s},
                                                 {u"Window/Left"_s, u"1"_s},
                                                 {u"Window/Top"_s, u"1280"_s}}));
}

TEST(SettingsCopy, OtherFilesAreLeftAlone) {
    const TestFolder folder;
    const QString path = folder.write(kName, "[Limit]\nDewL");
    EXPECT_EQ(completeCutSettings(path), QStringList()) << "there is no copy";
    folder.write(kName, kWhole);
    ASSERT_TRUE(writeWholeCopy(path));
    const auto without = [](const QByteArray& bytes, const QByteArray& taken) {
        return QByteArray(bytes).replace(taken, "");
    };
    const QByteArray withoutLast = without(kWhole, "Top=1280\n");
    const QByteArray withoutPassword = without(kWhole, "Password=\"a=b; [c]\"\n");
    const QByteArrayList files{
        kWhole,
        kWhole.chopped(1), // by an editor without a last line end
        QByteArray(kWhole).replace("\n", "\r\n"),
        withoutLast, // taken out by hand
        withoutLast.chopped(1),
        without(withoutPassword, "Top=1280\n"),
        without(withoutPassword, kMark), // the mark, too
        without(withoutPassword, kMark).chopped(1),
        QByteArray(kWhole).replace("Top=1280\n", "Top=7"),
        kWhole + "\n[Moon]\nPhase=3\n", // of a newer version
        "[Setup]\nEmulator=0\n",        // somebody's beginning
        "; note\n[Limit]\nWindCalm=7\n; end",
    };
    for (const QByteArray& file : files) {
        SCOPED_TRACE(file.constData());
        folder.write(kName, file);
        EXPECT_EQ(completeCutSettings(path), QStringList());
        EXPECT_EQ(folder.read(kName), file);
    }
    QFile::remove(path);
    EXPECT_EQ(completeCutSettings(path), QStringList()) << "a missing file resets everything";
    EXPECT_FALSE(QFile::exists(path));
}

} // namespace
} // namespace skyhold
