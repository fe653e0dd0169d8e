// SPDX-License-Identifier: GPL-3.0-or-later
// The two forms of a station's file, as tables.
#include "target.h"

#include "datafiles/station_table.h"
#include "platform/text_encoding.h"

#include <QStringList>

#include <algorithm>

namespace skyhold::fuzz {

namespace {

using Rows = std::vector<std::array<QString, StationTable::kCells>>;

Rows rowsOf(const StationTable& table) {
    Rows rows;
    for (qsizetype row = 1; row <= table.rowCount(); ++row) {
        rows.push_back({table.cell(1, row).toString(), table.cell(2, row).toString(),
                        table.cell(3, row).toString()});
    }
    return rows;
}

void requireSoundTable(const StationTable& table, const QString& text) {
    qsizetype characters = 0;
    for (const auto& row : rowsOf(table)) {
        for (const QString& cell : row)
            characters += cell.size();
    }
    require(characters <= text.size(), "a table holds no more text than its file");
    for (int cell = 0; cell <= StationTable::kCells + 1; ++cell) {
        require(table.cell(cell, 0).isEmpty(), "row 0 is empty");
        require(table.cell(cell, table.rowCount() + 1).isEmpty(), "nothing behind the last row");
    }
    require(FindRow(table, u"no such name \u2603") <= table.rowCount(),
            "a row that is found is there");
    for (qsizetype row = 1; row <= std::min<qsizetype>(table.rowCount(), 20); ++row) {
        const qsizetype found = FindRow(table, table.cell(1, row));
        require(found >= 1 && found <= row, "the first row of a name is found");
    }
}

// The rules of a page as they are said, without regard to speed.
Rows plainHtmlTable(const QString& text) {
    using namespace Qt::Literals::StringLiterals;
    Rows rows;
    const qsizetype t0 = text.indexOf(u"<table"_s);
    const qsizetype t1 = t0 < 0 ? -1 : text.indexOf(u"</table>"_s, t0);
    for (qsizetype at = t0; t1 >= 0;) {
        const qsizetype r0 = text.indexOf(u"<tr>"_s, at);
        const qsizetype r1 = r0 < 0 ? -1 : text.indexOf(u"</tr>"_s, r0);
        if (r1 < 0 || r0 > t1 || r1 > t1)
            break;
        rows.emplace_back();
        qsizetype c = r0;
        for (std::size_t cell = 0;; ++cell) {
            const qsizetype s = text.indexOf(u"<td"_s, c);
            const qsizetype g = s < 0 ? -1 : text.indexOf(u'>', s);
            const qsizetype e = g < 0 ? -1 : text.indexOf(u"</td>"_s, g);
            if (s >= 0 && s < r1 && cell == StationTable::kCells)
                return rows;
            if (e < 0 || e > r1)
                break;
            QString value = text.mid(g + 1, e - g - 1);
            value.replace(u"&nbsp;"_s, u" "_s).replace(u"&amp;"_s, u"&"_s);
            value.replace(u"&quot;"_s, u"'"_s).replace(u"&deg;"_s, u"\u00B0"_s);
            value.replace(u"&#"_s, u"#"_s).replace(u"&lt;"_s, u"<"_s).replace(u"&gt;"_s, u">"_s);
            value.replace(u"%20"_s, u" "_s).replace(u"'"_s, u" "_s);
            value.remove(u'\n').remove(u'\r');
            while (value.startsWith(u' ') || value.startsWith(u'\t'))
                value.remove(0, 1);
            while (value.endsWith(u' ') || value.endsWith(u'\t'))
                value.chop(1);
            rows.back()[cell] = value;
            c = e;
        }
        at = r1;
    }
    return rows;
}

void htmlTable(QByteArrayView bytes) {
    const QString text = decodeText(bytes.toByteArray());
    const StationTable table = ParseHtmlTable(text);
    requireSoundTable(table, text);
    require(!table.cutShort() && !table.openQuote(), "a page is never cut short in a record");
    require(rowsOf(table) == plainHtmlTable(text), "the rows are those of the plain rules");
}

// Every row of a table, so that reading it gives the same table.
QString csvOf(const Rows& rows) {
    QString text;
    for (const auto& row : rows) {
        for (const QString& cell : row) {
            // A quote can only stand in a field that needs none around it.
            const QString quote = cell.contains(u'"') ? QString() : QStringLiteral("\"");
            text += quote + cell + quote + (&cell == &row.back() ? u'\n' : u',');
        }
    }
    return text;
}

void csvTable(QByteArrayView bytes) {
    const QString text = decodeText(bytes.toByteArray());
    const StationTable table = ParseCsvTable(text);
    requireSoundTable(table, text);
    const auto separators =
        std::ranges::count_if(text, [](QChar c) { return c == u',' || c == u'\r' || c == u'\n'; });
    require(table.rowCount() <= separators / 3 + 1, "three separators make a record");
    const Rows rows = rowsOf(table);
    const StationTable again = ParseCsvTable(csvOf(rows));
    require(rowsOf(again) == rows, "a table that is written and read again is the same");
    require(!again.cutShort() && !again.openQuote(), "a whole file is not cut short");
}

} // namespace

const Target kHtmlTable{"html_table", htmlTable};
const Target kCsvTable{"csv_table", csvTable};

} // namespace skyhold::fuzz
