// SPDX-License-Identifier: GPL-3.0-or-later
// The text of a settings file: "[Section]" lines, "Key=text" lines below them, and a mark at the
// end, by which a file that was cut short is known. Every value is a text; whatever a file says
// of itself, nothing else is made of it.
#pragma once

#include <QByteArray>
#include <QMap>
#include <QSettings>
#include <QString>

#include <vector>

namespace skyhold {

// The key that stands last in every file that has been written to its end.
inline const QString kEndMark = QStringLiteral("End/Whole");

struct StoredText {
    QString name; // "Section/Key"
    QString text;
};

// What a file holds, in its order. A line that is not a key, section or comment is skipped, and so
// is a value that is not a text (a date, a rectangle). A line ends at its line end even within
// quotes: one that is missing does not cost the rest of the file.
std::vector<StoredText> settingsOf(QByteArrayView bytes);

// The file that holds these texts by their names, and the end mark.
QByteArray settingsBytes(const QMap<QString, QString>& texts);

// The same for QSettings.
QSettings::Format settingsFormat();

} // namespace skyhold
