// SPDX-License-Identifier: GPL-3.0-or-later
#include "settings/transfer.h"

#include "platform/replacement_file.h"
#include "platform/settings_text.h"
#include "settings/key_table.h"

#include <QFileInfo>
#include <QMap>

namespace skyhold {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr qint64 kMostBytes = 4'000'000; // of ten thousand upload entries, generously
constexpr int kMostShown = 40;           // characters of a text that is refused

using Texts = QMap<QString, QString>; // by "section/key"

QString nameOf(const KeyRow& row) {
    return row.section + u'/' + row.key;
}

// Whether the row is for a file that may leave this computer.
bool travels(const KeyRow& row) {
    return row.role != KeyRole::Secret && row.role != KeyRole::State;
}

// Loads what `texts` has of these rows, and removes it there.
void check(const std::vector<KeyRow>& rows, const NumberForms& forms, Texts& texts,
           SettingsImport& import) {
    for (const KeyRow& row : rows) {
        const auto found = texts.find(nameOf(row));
        if (found == texts.end())
            continue;
        const QString text = found.value();
        texts.erase(found);
        if (row.role == KeyRole::State)
            continue; // belongs to the other computer's window
        if (row.role == KeyRole::Secret)
            import.refused += nameOf(row) + u": secrets are not imported"_s;
        else if (row.load(text, forms))
            import.values.push_back({row.section, row.key, text});
        else
            import.refused +=
                u"%1: \"%2\" is no value of it"_s.arg(nameOf(row), text.left(kMostShown));
    }
}

} // namespace

QString exportSettings(Records& records, const QString& path, const NumberForms& forms) {
    Texts texts;
    for (const KeyRow& row : keyTable(records)) {
        if (travels(row))
            texts[nameOf(row)] = row.text(forms);
    }
    for (const KeyRow& row : uploadEntryRows(records.upload))
        texts[nameOf(row)] = row.text(forms);
    ReplacementFile file(path);
    if (!file.isOpen() || !file.write(settingsBytes(texts)) || !file.commit())
        return u"%1 cannot be written"_s.arg(path);
    return {};
}

SettingsImport readSettingsFile(const QString& path, const NumberForms& forms) {
    SettingsImport import;
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        import.fault = u"%1 cannot be read"_s.arg(path);
    else if (file.size() > kMostBytes)
        import.fault = u"%1 is too long for a file of settings"_s.arg(path);
    if (!import.fault.isEmpty())
        return import;
    Texts texts;
    for (const StoredText& stored : settingsOf(file.readAll()))
        texts[stored.name] = stored.text;
    // Checked in records of its own: what a value does to others is seen, and nothing is changed.
    Records tried;
    check(keyTable(tried), forms, texts, import);
    check(uploadEntryRows(tried.upload), forms, texts, import);
    if (texts.remove(kEndMark) == 0)
        import.refused += u"The file was cut short: some settings are missing"_s;
    for (auto unknown = texts.begin(); unknown != texts.end(); ++unknown)
        import.refused += unknown.key().left(kMostShown) + u": not known"_s;
    if (import.values.empty())
        import.fault = u"%1 holds no settings"_s.arg(path);
    return import;
}

void takeSettings(Records& records, const SettingsImport& import, const NumberForms& forms) {
    Texts texts;
    for (const SettingsImport::Value& value : import.values)
        texts[value.section + u'/' + value.key] = value.text;
    const auto load = [&](const std::vector<KeyRow>& rows) {
        for (const KeyRow& row : rows) {
            const auto found = texts.constFind(nameOf(row));
            if (found != texts.constEnd())
                row.load(*found, forms);
            else if (row.type == KeyType::Boolean) // of options that the file has in part
                row.load(row.text(forms), forms);
        }
    };
    load(keyTable(records));
    load(uploadEntryRows(records.upload));
}

} // namespace skyhold
