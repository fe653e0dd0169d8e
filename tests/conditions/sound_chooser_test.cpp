#include "conditions/sound_chooser.h"

#include "support/scripted_media.h"
#include "support/test_folder.h"

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

struct Chooser : testing::Test {
    Chooser() {
        for (const char* name : {"sounds/Bell.wav", "sounds/loop.MP3", "sounds/notes.txt",
                                 "sounds/b.mid", "sounds/a.wma", "sounds/drumwav", "last/x.wav"})
            folder.write(QLatin1String(name));
    }
    QString path(const char* name) const { return folder.filePath(QLatin1String(name)); }

    TestFolder folder;
    const QString sounds = path("sounds"), last = path("last"), bell = path("sounds/Bell.wav");
};

TEST_F(Chooser, ListsSoundsAlone) {
    EXPECT_EQ(soundFiles(sounds),
              (QStringList{u"a.wma"_s, u"b.mid"_s, u"Bell.wav"_s, u"drumwav"_s, u"loop.MP3"_s}));
    EXPECT_EQ(soundFiles(path("none")), QStringList());
}

TEST_F(Chooser, OpensAtTheSoundOfTheBox) {
    const QString loop = path("sounds/loop.MP3");
    const QString gone = path("sounds/gone.wav");
    const QString away = path("gone/x.wav");
    const QString root = u"/none.wav"_s;
    const QString backslashes = QString(bell).replace(u'/', u'\\');
    const struct {
        const char* what;
        QString tag, last;
        QString folder, fileName, selected;
        bool repeat = false;
    } rows[] = {
        {"no sound yet", {}, {}, sounds, {}, {}},
        {"no sound, a folder used before", {}, last, last, {}, {}},
        {"that is gone", {}, path("gone"), sounds, {}, {}},
        {"a sound", bell, last, sounds, bell, u"Bell.wav"_s},
        {"repeated", loop + u"|repeat"_s, {}, sounds, loop, u"loop.MP3"_s, true},
        {"a sound that is gone", gone, {}, sounds, gone, {}},
        {"a folder that is gone", away, last, last, away, u"x.wav"_s},
        {"backslashes", backslashes, last, backslashes.chopped(9), backslashes, u"Bell.wav"_s},
        {"in the root", root, last, u"/"_s, root, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        CheckBox box;
        box.Tag = row.tag;
        const SoundChooser chooser = Def_Label(box, row.last, sounds);
        EXPECT_EQ(chooser.folder, row.folder);
        EXPECT_EQ(chooser.FileName, row.fileName);
        EXPECT_EQ(chooser.selected, row.selected);
        EXPECT_EQ(chooser.CheckPlay1, row.repeat);
    }
}

TEST_F(Chooser, ButtonsPreviewAndWriteBack) {
    CheckBox box;
    QString used;
    SoundChooser chooser = Def_Label(box, used, sounds);
    selectSoundFile(chooser, u"Bell.wav"_s);
    chooser.CheckPlay1 = true;

    ScriptedMedia media;
    previewSound(media, chooser);
    EXPECT_EQ(media.commands,
              (QStringList{u"stop KivNubiloPlayer"_s, u"close KivNubiloPlayer"_s,
                           u"open "_s + bell + u" type MPEGVideo alias KivNubiloPlayer"_s,
                           u"play KivNubiloPlayer from 0 repeat"_s}));

    const auto accept = [&](const QString& file, bool repeat, const QString& tag) {
        chooser.FileName = file;
        chooser.CheckPlay1 = repeat;
        acceptSound(chooser, box, used);
        EXPECT_EQ(box.Tag.value(), tag);
        EXPECT_EQ(box.HasIcons, !tag.isEmpty());
    };
    accept(chooser.FileName, true, bell + u"|repeat"_s);
    EXPECT_EQ(used, sounds);
    chooser = Def_Label(box, used, {});
    EXPECT_EQ(chooser.FileName, bell);
    accept(bell, false, bell);
    accept({}, true, {});
}

} // namespace

} // namespace skyhold
