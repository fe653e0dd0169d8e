// SPDX-License-Identifier: GPL-3.0-or-later
#include "datafiles/station_table.h"

namespace skyhold {

namespace {

struct Replacement {
    QStringView from;
    QStringView to; // never longer than `from`
};

// In this order, each over the result of the one before.
constexpr Replacement kReplacements[] = {
    {u"&nbsp;", u" "}, {u"&amp;", u"&"}, {u"&quot;", u"'"}, {u"&deg;", u"\u00B0"},
    {u"&#", u"#"},     {u"&lt;", u"<"},  {u"&gt;", u">"},   {u"%20", u" "},
    {u"'", u" "},      {u"\n", u""},     {u"\r", u""},
};

// In place and in one pass, however many there are to replace.
void replaceAll(QString& text, const Replacement& replacement) {
    qsizetype found = text.indexOf(replacement.from);
    if (found < 0)
        return;
    QChar* const data = text.data();
    qsizetype write = found;
    while (found >= 0) {
        for (const QChar c : replacement.to)
            data[write++] = c;
        const qsizetype read = found + replacement.from.size();
        found = QStringView(text).indexOf(replacement.from, read);
        const qsizetype end = found < 0 ? text.size() : found;
        for (qsizetype i = read; i < end; ++i)
            data[write++] = data[i];
    }
    text.truncate(write);
}

bool needsCleaning(QStringView cell) {
    for (const QChar c : cell) {
        if (c == u'&' || c == u'%' || c == u'\'' || c == u'\n' || c == u'\r')
            return true;
    }
    return false;
}

QStringView withoutBlanksAround(QStringView text) {
    const auto isBlank = [](QChar c) {
        return c == u' ' || c == u'\t';
    };
    while (!text.isEmpty() && isBlank(text.front()))
        text = text.sliced(1);
    while (!text.isEmpty() && isBlank(text.back()))
        text.chop(1);
    return text;
}

// Where a tag begins at or after `from`, negative when it does not.
qsizetype findTag(QStringView text, QStringView tag, qsizetype from) {
    for (qsizetype at = text.indexOf(u'<', from); at >= 0; at = text.indexOf(u'<', at + 1)) {
        if (text.sliced(at).startsWith(tag))
            return at;
    }
    return -1;
}

// Adds the cells of the row's text; false when it has more than a row holds.
bool addCells(StationTable& table, QStringView row, QString& scratch) {
    qsizetype at = 0;
    for (int cell = 1;; ++cell) {
        const qsizetype start = findTag(row, u"<td", at);
        if (start < 0)
            return true;
        if (cell > StationTable::kCells)
            return false;
        const qsizetype open = row.indexOf(u'>', start);
        const qsizetype end = open < 0 ? -1 : findTag(row, u"</td>", open);
        if (end < 0)
            return true;
        QStringView text = row.sliced(open + 1, end - open - 1);
        if (needsCleaning(text)) {
            scratch = text.toString();
            for (const Replacement& replacement : kReplacements)
                replaceAll(scratch, replacement);
            text = scratch;
        }
        table.addCell(withoutBlanksAround(text));
        at = end;
    }
}

} // namespace

StationTable ParseHtmlTable(QStringView text) {
    StationTable table;
    const qsizetype start = findTag(text, u"<table", 0);
    const qsizetype end = start < 0 ? -1 : findTag(text, u"</table>", start);
    if (end < 0)
        return table;

    // No search looks beyond the table, and none for a cell beyond its row: every part of the
    // page is passed over a fixed number of times.
    const QStringView body = text.first(end);
    QString scratch;
    qsizetype at = start;
    while (true) {
        const qsizetype rowStart = findTag(body, u"<tr>", at);
        const qsizetype rowEnd = rowStart < 0 ? -1 : findTag(body, u"</tr>", rowStart);
        if (rowEnd < 0)
            return table;
        table.addRow();
        if (!addCells(table, body.sliced(rowStart, rowEnd - rowStart), scratch))
            return table;
        at = rowEnd;
    }
}

} // namespace skyhold
