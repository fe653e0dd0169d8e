// SPDX-License-Identifier: GPL-3.0-or-later
#include "conditions/sound_chooser.h"

#include "conditions/alarms.h"
#include "platform/files.h"

#include <QDir>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

QString folderOf(const QString& path) {
    const qsizetype separator = nativePath(path).lastIndexOf(u'/');
    return separator == 0 ? path.first(1) : path.first(std::max<qsizetype>(separator, 0));
}

} // namespace

SoundChooser Def_Label(const CheckBox& box, const QString& lastMusicDir,
                       const QString& currentFolder) {
    const SoundSpec sound = parseSound(box.Tag);
    SoundChooser chooser;
    chooser.FileName = sound.file;
    chooser.CheckPlay1 = sound.repeat;
    chooser.folder = currentFolder;
    for (const QString& folder : {folderOf(sound.file), lastMusicDir}) {
        if (folderExists(folder)) {
            chooser.folder = folder;
            break;
        }
    }
    const QString name = nativePath(sound.file).section(u'/', -1);
    if (soundFiles(chooser.folder).contains(name))
        chooser.selected = name;
    return chooser;
}

QStringList soundFiles(const QString& folder) {
    return QDir(nativePath(folder))
        .entryList({u"*wav"_s, u"*.mp3"_s, u"*.mid"_s, u"*.wma"_s}, QDir::Files,
                   QDir::Name | QDir::IgnoreCase);
}

void selectSoundFile(SoundChooser& chooser, const QString& name) {
    chooser.selected = name;
    chooser.FileName = joinPath(chooser.folder, name);
}

void previewSound(MediaControl& media, const SoundChooser& chooser) {
    stopSound(media);
    startSound(media, {chooser.FileName, chooser.CheckPlay1});
}

void acceptSound(const SoundChooser& chooser, CheckBox& box, QString& lastMusicDir) {
    lastMusicDir = chooser.folder;
    const bool hasSound = !chooser.FileName.isEmpty();
    box.Tag = hasSound && chooser.CheckPlay1 ? chooser.FileName + u"|repeat"_s : chooser.FileName;
    SetAlarmIcons(box, hasSound);
}

} // namespace skyhold
