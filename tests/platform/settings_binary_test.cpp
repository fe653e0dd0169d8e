#include "platform/settings_binary.h"

#include "support/test_folder.h"

#include <QSettings>

namespace skyhold {
namespace {

TEST(SettingsBinary, BinaryValuesGoAndTextStays) {
    const TestFolder folder;
    const QString name = QStringLiteral("Kiv_Skyhold.ini");
    for (const QByteArray line :
         {R"-(A=@Variant(\0\0\0\x10x)-", R"-(A= "@Variant(x)")-", R"-(A=\x40Variant(x)-",
          R"-(A=\x0040Variant(x)-", R"-(A=\100Variant(x)-", R"-(A=1, @DateTime(x)-",
          R"-(A=@Var"ia"nt(x)-", "A=@Var\\\niant(x", "A=\"\n@Variant(x\""}) {
        const QString path = folder.write(name, "[Limit]\n" + line + "\nB=user@host\n");
        EXPECT_TRUE(removeBinaryValues(path)) << line.constData();
        const QByteArray left = folder.read(name);
        EXPECT_FALSE(removeBinaryValues(path)) << line.constData();
        const QSettings read(path, QSettings::IniFormat);
        EXPECT_NE(read.value(QStringLiteral("Limit/A")).typeId(), QMetaType::QDateTime);
        // A value over several lines may take what looks like a piece of it along.
        EXPECT_TRUE(left.contains("B=user@host") || line.contains('\n')) << line.constData();
    }
    for (const QByteArray line :
         {R"-(A=@@Variant(x)-", R"-(A=x@Variant(1)-", R"-(A="a\x40, b")-"}) {
        const QByteArray text = "[Limit]\n" + line + '\n';
        EXPECT_FALSE(removeBinaryValues(folder.write(name, text))) << line.constData();
        EXPECT_EQ(folder.read(name), text);
    }
    EXPECT_FALSE(removeBinaryValues(folder.filePath(QStringLiteral("missing.ini"))));
}

} // namespace
} // namespace skyhold
