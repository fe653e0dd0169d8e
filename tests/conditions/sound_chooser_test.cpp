#include "conditions/sound_chooser.h"

#include "support/scripted_media.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

struct Chooser : testing::Test {
    Chooser() {
        for (const char* name : {"sounds/Bell.wav", "sounds/loop.MP3", "sounds/notes.txt",
                                 "sounds/b.mid", "sounds/a.wma", "sounds/drumwav", "last/x.wav"})
            touch(QLatin1String(name));
    }
    void touch(const QString& name) {
        QDir(folder.path()).mkpath(name.section(u'/', 0, 0));
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    }
    QString path(const char* name) const { return folder.filePath(QLatin1String(name)); }

    QTemporaryDir folder;
};

TEST_F(Chooser, ListsSoundsAlone) {
    EXPECT_EQ(soundFiles(path("sounds")),
              (QStringList{u"a.wma"_s, u"b.mid"_s, u"Bell.wav"_s, u"drumwav"_s, u"loop.MP3"_s}));
    EXPECT_EQ(soundFiles(path("none")), QStringList());
}

TEST_F(Chooser, OpensAtTheSoundOfTheBox) {
    QString backslashes = path("sounds/Bell.wav");
    backslashes.replace(u'/', u'\\');
    const struct {
        const char* what;
        QString tag, last;
        QString folder, fileName, selected;
        bool repeat;
    } rows[] = {
        {"no sound yet", {}, {}, path("sounds"), {}, {}, false},
        {"no sound, a folder used before", {}, path("last"), path("last"), {}, {}, false},
        {"that is gone", {}, path("gone"), path("sounds"), {}, {}, false},
        {"a sound", path("sounds/Bell.wav"), path("last"), path("sounds"), path("sounds/Bell.wav"),
         u"Bell.wav"_s, false},
        {"repeated",
         path("sounds/loop.MP3") + u"|repeat"_s,
         {},
         path("sounds"),
         path("sounds/loop.MP3"),
         u"loop.MP3"_s,
         true},
        {"a sound that is gone",
         path("sounds/gone.wav"),
         {},
         path("sounds"),
         path("sounds/gone.wav"),
         {},
         false},
        {"a folder that is gone", path("gone/x.wav"), path("last"), path("last"),
         path("gone/x.wav"), u"x.wav"_s, false},
        {"backslashes", backslashes, path("last"), QString(backslashes).chopped(9), backslashes,
         u"Bell.wav"_s, false},
        {"in the root", u"/none.wav"_s, path("last"), u"/"_s, u"/none.wav"_s, {}, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        CheckBox box;
        box.Tag = row.tag;
        const SoundChooser chooser = Def_Label(box, row.last, path("sounds"));
        EXPECT_EQ(chooser.folder, row.folder);
        EXPECT_EQ(chooser.FileName, row.fileName);
        EXPECT_EQ(chooser.selected, row.selected);
        EXPECT_EQ(chooser.CheckPlay1, row.repeat);
    }
}

TEST_F(Chooser, ButtonsPreviewAndWriteBack) {
    CheckBox box;
    QString last;
    SoundChooser chooser = Def_Label(box, last, path("sounds"));
    selectSoundFile(chooser, u"Bell.wav"_s);
    chooser.CheckPlay1 = true;

    ScriptedMedia media;
    previewSound(media, chooser);
    EXPECT_EQ(media.commands, (QStringList{u"stop KivNubiloPlayer"_s, u"close KivNubiloPlayer"_s,
                                           u"open "_s + path("sounds/Bell.wav") +
                                               u" type MPEGVideo alias KivNubiloPlayer"_s,
                                           u"play KivNubiloPlayer from 0 repeat"_s}));

    acceptSound(chooser, box, last);
    EXPECT_EQ(box.Tag.value(), path("sounds/Bell.wav") + u"|repeat"_s);
    EXPECT_TRUE(box.HasIcons);
    EXPECT_EQ(last, path("sounds"));

    chooser = Def_Label(box, last, {});
    EXPECT_EQ(chooser.FileName, path("sounds/Bell.wav"));
    chooser.CheckPlay1 = false;
    acceptSound(chooser, box, last);
    EXPECT_EQ(box.Tag.value(), path("sounds/Bell.wav"));

    chooser.FileName.clear();
    chooser.CheckPlay1 = true;
    acceptSound(chooser, box, last);
    EXPECT_EQ(box.Tag.value(), QString());
    EXPECT_FALSE(box.HasIcons);
}

} // namespace

} // namespace skyhold
