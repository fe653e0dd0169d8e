// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/plain_line.h"

namespace skyhold {

QString plainLine(const QString& text) {
    QString plain = text;
    for (QChar& character : plain) {
        const QChar::Category category = character.category();
        if (category == QChar::Other_Control || category == QChar::Separator_Line ||
            category == QChar::Separator_Paragraph)
            character = u' ';
    }
    return plain;
}

} // namespace skyhold
