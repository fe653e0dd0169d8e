// SPDX-License-Identifier: GPL-3.0-or-later
// The settings file, with whatever stands in it.
#include "target.h"

#include "settings/key_table.h"
#include "settings/load_save.h"
#include "settings/stored_text.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace skyhold::fuzz {

namespace {

constexpr std::size_t kMostEntries = 20;

void requireSoundRow(const KeyRow& row, const NumberForms& forms) {
    const QString text = row.text(forms);
    bool converts = false;
    switch (row.type) {
    case KeyType::Text:
        return;
    case KeyType::Number:
        require(storedNumber(text, forms).has_value(), "a number is finite");
        return;
    case KeyType::Integer:
        if (text.isEmpty())
            return; // a window that was never placed
        [[fallthrough]];
    case KeyType::Colour: {
        const int value = text.toInt(&converts);
        require(converts && value >= row.lowest && value <= row.highest,
                "a whole number is in its range");
        return;
    }
    case KeyType::Boolean:
        require(text == u"True"_s || text == u"False"_s, "a boolean is one of two");
        return;
    case KeyType::CheckBox:
        require(text == u"0"_s || text == u"1"_s, "a check box is checked or not");
        return;
    }
}

QStringList textsOf(Records& records, const NumberForms& forms) {
    QStringList texts;
    for (const auto& rows : {keyTable(records), uploadEntryRows(records.upload)}) {
        for (const KeyRow& row : rows) {
            requireSoundRow(row, forms);
            // Qt drops byte order marks, which nobody sees, from what it reads.
            texts << row.text(forms).remove(QChar::ByteOrderMark);
        }
    }
    return texts;
}

void settingsFile(QByteArrayView bytes) {
    // A name of its own for each: Qt keeps the contents of files that it has read.
    static const QTemporaryDir folder;
    static int last = 0;
    qputenv("XDG_CONFIG_HOME", folder.path().toLocal8Bit());
    const QString application = u"fuzz"_s + QString::number(++last);
    const QString path = folder.filePath(u"Kiv/"_s + application + u".ini"_s);
    QDir(folder.path()).mkdir(u"Kiv"_s, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);

    Input input(bytes);
    const NumberForms forms =
        input.byte() % 2 ? NumberForms{u","_s, u"."_s} : NumberForms{u"."_s, u","_s};
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return broken("the target can write its file");
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    file.write(input.rest().toByteArray());
    file.close();

    {
        SettingsStore store(application);
        Records first;
        LoadSettings(first, store, forms);
        // A list of thousands takes the time of a hundred inputs: some entries will do.
        if (first.upload.Files.size() > kMostEntries)
            first.upload.Files.resize(kMostEntries);
        const QStringList texts = textsOf(first, forms);
        require(SaveSettings(first, store, forms), "loaded settings can be saved");
        Records second;
        LoadSettings(second, SettingsStore(application), forms);
        require(textsOf(second, forms) == texts, "settings that are saved and loaded are the same");
    }
    QDir(QFileInfo(path).path()).removeRecursively(); // with what the store keeps beside it
}

} // namespace

const Target kSettingsFile{"settings_file", settingsFile};

} // namespace skyhold::fuzz
