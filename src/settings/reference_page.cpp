// SPDX-License-Identifier: GPL-3.0-or-later
#include "settings/reference_page.h"

#include "settings/key_table.h"

namespace skyhold {

using namespace Qt::Literals::StringLiterals;

namespace {

const QString kPreface =
    u"# Settings\n"
    "\n"
    "Everything that the user chooses is kept in one text file, `Kiv/Kiv_Skyhold.ini`, in the\n"
    "user's configuration folder (`$XDG_CONFIG_HOME`, by default `~/.config`). It is read when\n"
    "the monitor starts and written when it ends; a few keys are written at once. Edit it only\n"
    "while the monitor is not running. Only its owner can read it, since it holds a password.\n"
    "\n"
    "Its last key, `Whole` in section `End`, marks a file that has been written to its end. A "
    "file\n"
    "without it that ends in the middle of a line, or has only the first keys of the last whole\n"
    "copy (`Kiv_Skyhold.ini.whole`), was cut short: the missing keys are restored from the copy,\n"
    "and the status line and the log name them. Keys that you remove by hand stay removed.\n"
    "\n"
    "A key that is missing, invalid or out of range has its default.\n"
    "\n"
    "| type | text |\n"
    "|---|---|\n"
    "| text | as it is |\n"
    "| integer, number | with the decimal separator of the locale, no thousands separator |\n"
    "| boolean | `True` or `False`; of the options of one choice, one is `True` |\n"
    "| check box | `0` or `1` |\n"
    "| colour | the decimal text of 0x00BBGGRR (blue in the high byte) |\n"
    "\n"
    "*Program folder* is the folder of the program, or the user's data folder for it where the\n"
    "user may not write there (an installed package).\n"_s;

QString typeName(const KeyRow& row) {
    switch (row.type) {
    case KeyType::Text:
        return u"text"_s;
    case KeyType::Integer:
        return u"integer %1 to %2%3"_s.arg(row.lowest)
            .arg(row.highest)
            .arg(row.clamped ? u", else the nearer end"_s : QString());
    case KeyType::Number:
        return u"number"_s;
    case KeyType::Boolean:
        return u"boolean"_s;
    case KeyType::CheckBox:
        return u"check box"_s;
    case KeyType::Colour:
        break;
    }
    return u"colour"_s;
}

QString defaultCell(const KeyRow& row) {
    if (!row.defaultName.isEmpty())
        return u'*' + row.defaultName + u'*';
    return row.defaultText.isEmpty() ? QString() : u'`' + row.defaultText + u'`';
}

} // namespace

QString settingsReference() {
    Records records;
    const std::vector<KeyRow> rows = keyTable(records);
    QStringList sections;
    for (const KeyRow& row : rows) {
        if (!sections.contains(row.section))
            sections += row.section;
    }
    QString page = kPreface;
    for (const QString& section : sections) {
        page +=
            u"\n## Section \"%1\"\n\n| key | type | default | holds |\n|---|---|---|---|\n"_s.arg(
                section);
        for (const KeyRow& row : rows) {
            if (row.section == section)
                page +=
                    u"| `%1` | %2 | %3 | %4 |\n"_s.arg(row.key, typeName(row), defaultCell(row),
                                                       QString(row.holds).replace(u'|', u"\\|"_s));
        }
    }
    return page;
}

} // namespace skyhold
