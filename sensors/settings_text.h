// SPDX-License-Identifier: GPL-3.0-or-later
// The sensor program's settings as text: "[section name]" lines, "key = value" lines below them,
// and comments behind "#".
#pragma once

#include <QByteArrayView>
#include <QString>
#include <QStringList>

#include <vector>

namespace skyhold {

struct SettingLine {
    int line = 0; // from 1
    QString key;  // lower case
    QString value;
};

struct SettingSection {
    int line = 0;
    QString kind; // lower case: the first word of the heading
    QString name; // the rest of it, may be empty
    std::vector<SettingLine> lines;
};

// The sections in their order. A line that is none of these is a fault, "line 7: ...": a setting
// that is misread must not be passed over. A "#" begins a comment at the start of a line or behind
// a blank.
std::vector<SettingSection> parseSettings(QByteArrayView text, QStringList& faults);

} // namespace skyhold
