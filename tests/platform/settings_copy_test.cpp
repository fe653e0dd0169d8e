#include "platform/settings_copy.h"

#include "support/test_folder.h"

#include <algorithm>

namespace skyhold {
namespace {

const QString kName = QStringLiteral("Kiv_Skyhold.ini");
const QByteArray kWhole = "[Description]\nWindCalm=1\n\n[Limit]\nDewLow=3\nWindCalm=12\n\n"
                          "[Setup]\nPassword=\"a=b; [c]\"\n\n[Window]\nLeft=1\nTop=1280\n";

// The values that the copy has, whatever their order.
QByteArray valuesOf(const QByteArray& text) {
    QByteArrayList values;
    QByteArray section;
    for (const QByteArray& line : text.split('\n')) {
        if (line.startsWith('['))
            section = line;
        else if (!line.isEmpty())
            values += section + line;
    }
    std::ranges::sort(values);
    return values.join('\n');
}

TEST(SettingsCopy, FileCutAtAnyByteIsCompleted) {
    const TestFolder folder;
    const QString path = folder.write(kName, kWhole);
    ASSERT_TRUE(keepWholeCopy(path));
    // Without its last line end alone it lacks nothing.
    for (qsizetype size = 0; size < kWhole.size() - 1; ++size) {
        SCOPED_TRACE(size);
        for (const QByteArray& lost : {QByteArray(), QByteArray(kWhole.size() - size, '\0')}) {
            folder.write(kName, kWhole.left(size) + lost);
            EXPECT_TRUE(completeCutSettings(path));
            EXPECT_EQ(valuesOf(folder.read(kName)), valuesOf(kWhole));
            EXPECT_FALSE(completeCutSettings(path));
        }
    }
}

TEST(SettingsCopy, OtherFilesAreLeftAlone) {
    const TestFolder folder;
    const QString path = folder.write(kName, kWhole);
    folder.write(kName, "[Limit]\n");
    EXPECT_FALSE(completeCutSettings(path)) << "there is no copy";
    folder.write(kName, kWhole);
    ASSERT_TRUE(keepWholeCopy(path));
    const QByteArrayList files{
        kWhole,
        kWhole.chopped(1),
        QByteArray(kWhole).replace("DewLow=3\n", ""),      // taken out
        QByteArray(kWhole).replace("Top=1280\n", "Top=7"), // by hand
        kWhole + "\n[Moon]\nPhase=3\n",                    // of a newer version
        QByteArray(kWhole).replace("Left=1\n", "Left=1\nTheme=\"dark, blue\"\n"),
    };
    for (const QByteArray& file : files) {
        SCOPED_TRACE(file.constData());
        folder.write(kName, file);
        EXPECT_FALSE(completeCutSettings(path));
        EXPECT_EQ(folder.read(kName), file);
    }
    QFile::remove(path);
    EXPECT_FALSE(completeCutSettings(path)) << "a missing file resets everything";
    EXPECT_FALSE(QFile::exists(path));
}

} // namespace
} // namespace skyhold
