// SPDX-License-Identifier: GPL-3.0-or-later
// Bytes of text files. "ANSI" text is Windows-1252.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringView>

namespace skyhold {

// Valid UTF-8 is read as UTF-8 (a byte order mark is dropped), everything else as Windows-1252,
// also what is UTF-8 but for a sequence that its end breaks off.
QString decodeText(const QByteArray& bytes);

// One byte per character; a character outside Windows-1252 becomes "?", and nothing when it has no
// width either.
QByteArray encodeAnsi(QStringView text);

} // namespace skyhold
