// SPDX-License-Identifier: GPL-3.0-or-later
// Values in the text of a file, a command's output or a message: JSON, lines of "key=value", or a
// single value.
#pragma once

#include <QByteArrayView>
#include <QMap>
#include <QString>

#include <optional>

namespace skyhold {

// A text of more bytes is not read.
inline constexpr qsizetype kPayloadLimit = 64 * 1024;

// The values by their addresses: "wind.speed" or "list.0" of JSON, the key of a line, "value" for a
// text that is one value. Nothing, with the reason, for a text that is none of these. A JSON null
// is an empty text.
std::optional<QMap<QString, QString>> payloadValues(QByteArrayView bytes, QString& fault);

} // namespace skyhold
