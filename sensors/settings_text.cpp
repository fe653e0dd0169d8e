// SPDX-License-Identifier: GPL-3.0-or-later
#include "sensors/settings_text.h"

#include <QStringView>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

QStringView withoutComment(QStringView line) {
    for (qsizetype at = line.indexOf(u'#'); at >= 0; at = line.indexOf(u'#', at + 1)) {
        if (at == 0 || line[at - 1].isSpace())
            return line.first(at).trimmed();
    }
    return line.trimmed();
}

} // namespace

std::vector<SettingSection> parseSettings(QByteArrayView text, QStringList& faults) {
    std::vector<SettingSection> sections;
    const QString all = QString::fromUtf8(text);
    int number = 0;
    for (const QStringView raw : QStringView(all).split(u'\n')) {
        ++number;
        const QStringView line = withoutComment(raw);
        if (line.isEmpty())
            continue;
        if (line.startsWith(u'[') && line.endsWith(u']')) {
            const QString heading = line.sliced(1, line.size() - 2).toString().simplified();
            sections.push_back(
                {number, heading.section(u' ', 0, 0).toLower(), heading.section(u' ', 1), {}});
            continue;
        }
        const qsizetype equals = line.indexOf(u'=');
        if (equals <= 0 || sections.empty()) {
            faults.append(u"line %1: neither \"[section]\" nor \"key = value\""_s.arg(number));
            continue;
        }
        sections.back().lines.push_back({number, line.first(equals).trimmed().toString().toLower(),
                                         line.sliced(equals + 1).trimmed().toString()});
    }
    return sections;
}

} // namespace skyhold
