// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/settings_copy.h"
#include "platform/settings_text.h"
#include "support/test_folder.h"

using namespace Qt::Literals::StringLiterals;

namespace skyhold {
namespace {

using Texts = QMap<QString, QString>;

Texts textsIn(const QByteArray& bytes) {
    Texts texts;
    for (const StoredText& stored : settingsOf(bytes))
        texts.insert(stored.name, stored.text);
    texts.remove(kEndMark);
    return texts;
}

// As the library's own reader of such files has it.
Texts readByLibrary(const QString& path) {
    const QSettings file(path, QSettings::IniFormat);
    Texts texts;
    for (const QString& name : file.allKeys()) {
        const QVariant value = file.value(name);
        texts[name] = value.typeId() == QMetaType::QStringList ? value.toStringList().join(u',')
                                                               : value.toString();
    }
    texts.remove(kEndMark);
    return texts;
}

TEST(SettingsText, TextsOfAllKindsGoToTheLibraryAndBack) {
    const TestFolder folder;
    Texts texts{{u"top"_s, u"level"_s}, {u"General/a"_s, u"b"_s}, {u"Zenith/a/b é%20"_s, u"x"_s}};
    const QStringList values{u""_s,
                             u" blanks "_s,
                             u" before"_s,
                             u"a, b;c=d"_s,
                             u"\"quoted\" \\ \n\t\x01"_s + u"9f"_s,
                             u"@Variant(x)"_s,
                             u"@@"_s,
                             u"@"_s,
                             u"äß€ 😀"_s,
                             u"user@host"_s,
                             u"nul"_s + QChar(0) + u"7"_s,
                             u"#;["_s,
                             u"C:\\new\\"_s,
                             u"(x)"_s};
    for (const QString& value : values)
        texts[u"Setup/key%1"_s.arg(texts.size())] = value;

    const QByteArray written = settingsBytes(texts);
    EXPECT_EQ(textsIn(written), texts);
    EXPECT_EQ(readByLibrary(folder.write(u"ours.ini"_s, written)), texts);

    const QString path = folder.filePath(u"theirs.ini"_s);
    {
        QSettings theirs(path, QSettings::IniFormat);
        for (auto text = texts.begin(); text != texts.end(); ++text)
            theirs.setValue(text.key(), text.value());
        theirs.setValue(u"Setup/bytes"_s, "abc"_ba);
    }
    texts[u"Setup/bytes"_s] = u"abc"_s;
    EXPECT_EQ(textsIn(folder.read(u"theirs.ini"_s)), texts);
}

TEST(SettingsText, LinesWrittenByHandReadAsTheLibraryReadsThem) {
    const TestFolder folder;
    for (const QByteArray line : {"A = 1 ",
                                  "A=1\r",
                                  "A=",
                                  "=1",
                                  "A",
                                  ";A=1",
                                  "  ; A=1",
                                  "A=1 ; note",
                                  "A=\"1 ; 2\" ; note",
                                  "A=a,b",
                                  "A=a , \" b\" ,c ",
                                  "A=,",
                                  "A= \"a\" b ",
                                  "A=a\\tb\\x41g\\101\\q",
                                  "A=a=b",
                                  "A%20b=1",
                                  "A\\b=1",
                                  "A%zz=1",
                                  "A%U20AC=1",
                                  "A%4=1",
                                  "A=1\nA=2",
                                  "[Other]\nA=1",
                                  "[ Spaced ]\nA=1",
                                  "[%General]\nA=1",
                                  "[general]\nA=1",
                                  "[%44ew]\nA=1",
                                  "[torn\nA=1",
                                  "A=\xff",
                                  "A=x@Variant(1)",
                                  "A=@@Variant(x)",
                                  "\r\n\r\nA=1"}) {
        const QByteArray text = "\xef\xbb\xbf[Limit]\n" + line + "\nB=2\n";
        Texts library = readByLibrary(folder.write(u"%1.ini"_s.arg(qHash(line)), text));
        library.remove(u"Limit/"_s); // a key without a name
        EXPECT_EQ(textsIn(text), library) << line.constData();
    }
}

TEST(SettingsText, WhatIsNoTextIsPassedOverAndALineEndsAtItsEnd) {
    for (const QByteArray value :
         {R"-(@Variant(\0\0\0\x10x))-", R"-("@Variant(x)")-", R"-(\x40Variant(x))-", "@DateTime(x)",
          "1, @Rect(0 0 1 1)", "@Invalid()", R"-(@Var"ia"nt(x))-"})
        EXPECT_EQ(textsIn("[Limit]\nA=" + value + "\nB=2\n"), (Texts{{u"Limit/B"_s, u"2"_s}}))
            << value.constData();
    EXPECT_EQ(textsIn("[Limit]\nA=\"1\nB=2\\\nC=3\n"),
              (Texts{{u"Limit/A"_s, u"1"_s}, {u"Limit/B"_s, u"2"_s}, {u"Limit/C"_s, u"3"_s}}));
}

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
        without(withoutPassword, kMark).replace("Top=1280\n", "Top=7"), // changed by hand
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
