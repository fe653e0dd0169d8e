#include "datafiles/station_table.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <vector>

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

// The rows of the table as "name|unit|value", parted by " / ".
QString dump(const StationTable& table) {
    QStringList rows;
    for (qsizetype row = 1; row <= table.rowCount(); ++row)
        rows << u"%1|%2|%3"_s.arg(table.cell(1, row), table.cell(2, row), table.cell(3, row));
    return rows.join(u" / "_s);
}

struct Case {
    const char16_t* text;
    const char16_t* rows;
    bool cutShort = false;
    bool openQuote = false;
};

TEST(CsvTable, FollowsSequentialInput) {
    const std::vector<Case> cases = {
        {u"", u""},
        {u"a,b,c", u"a|b|c"},
        {u"a,b,c\r\nd,e,f\r\n", u"a|b|c / d|e|f"},
        {u"a,b,c\nd,e,f\n", u"a|b|c / d|e|f"},
        {u"a,b,c\rd,e,f\r", u"a|b|c / d|e|f"},
        {u" a b ,\tb , c \r\n", u"a b|b|c"},
        {u"\"a,1\",\" b \", \"c\" \r\n", u"a,1| b |c"},
        {u"\"a\"x,b,c\n", u"a|b|c"},
        {u"a,\"b\nb\",c\n", u"a|b\nb|c"},
        {u"a,b\r\nc\r\nd,e,f", u"a|b|c / d|e|f"},
        {u"a,,\r\n,,\r\n", u"a|| / ||"},
        {u"a,b,c,d\r\ne,f", u"a|b|c / d|e|f"},
        {u"a,b,c\r\n\r\n", u"a|b|c / ||"},
        {u"a,b,c\r\nd", u"a|b|c / d||", true},
        {u"a,b,c\r\nd,e", u"a|b|c / d|e|", true},
        {u"a,b,c\r\nd,e,", u"a|b|c / d|e|", true},
        {u"a,b,\"c", u"a|b|c", false, true},
        {u"a,b,c\n\"", u"a|b|c / ||", false, true},
        {u"a,b,\"c\n", u"a|b|c\n", false, true},
        {u"a,b,c\nd,\"e", u"a|b|c / d|e|", true, true},
    };
    for (const Case& c : cases) {
        const StationTable table = ParseCsvTable(c.text);
        EXPECT_EQ(dump(table), QStringView(c.rows)) << qPrintable(QString::fromUtf16(c.text));
        EXPECT_EQ(table.cutShort(), c.cutShort) << qPrintable(QString::fromUtf16(c.text));
        EXPECT_EQ(table.openQuote(), c.openQuote) << qPrintable(QString::fromUtf16(c.text));
    }
}

TEST(HtmlTable, TakesTheCellsOfTheFirstTable) {
    const std::vector<Case> cases = {
        {u"", u""},
        {u"no table", u""},
        {u"<table><tr><td>a</td></tr>", u""},
        {u"</table><table><tr><td>a</td></tr>", u""},
        {u"<p><table border=1><tr><td>a</td><td x=y>b</td><td>c</td></tr></table>", u"a|b|c"},
        {u"<table><tr><td>a</td></tr></table><table><tr><td>b</td></tr></table>", u"a||"},
        {u"<TABLE><tr><td>a</td></tr></TABLE>", u""},
        {u"<table><TR><td>a</td></TR><tr><td>b</td></tr></table>", u"b||"},
        {u"<table><tr x><td>a</td></tr><tr><td>b</td></tr></table>", u"b||"},
        {u"<table><tr><th>a</th></tr><tr><td>b</td></tr></table>", u"|| / b||"},
        {u"<table><tr><td>a</td></tr><tr><td>b</td></table></tr>", u"a||"},
        {u"<table><tr><td>a</tr><tr><td>b</td></tr></table>", u"|| / b||"},
        {u"<table><tr><td</tr><tr><td>b</td></tr></table>", u"|| / b||"},
        {u"<table><tr><td>a<td>b</td><td>c</td></tr></table>", u"a<td>b|c|"},
        {u"<table><tr></tr><tr><td>b</td></tr></table>", u"|| / b||"},
        // A fourth cell ends the table.
        {u"<table><tr><td>a</td><td>b</td><td>c</td></tr>"
         u"<tr><td>d</td><td>e</td><td>f</td><td>g</td></tr><tr><td>h</td></tr></table>",
         u"a|b|c / d|e|f"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(dump(ParseHtmlTable(c.text)), QStringView(c.rows))
            << qPrintable(QString::fromUtf16(c.text));
    }
}

TEST(HtmlTable, CleansCellsInOrder) {
    const std::pair<QString, QString> cases[] = {
        {u" 12.5&nbsp;"_s, u"12.5"_s}, {u"<b>OutTemp</b>"_s, u"<b>OutTemp</b>"_s},
        {u"&amp;lt;"_s, u"<"_s},       {u"&amp;nbsp;x"_s, u"&nbsp;x"_s},
        {u"&deg;C"_s, u"°C"_s},        {u"&amp;&amp;amp;"_s, u"&&amp;"_s},
        {u"&#176;C"_s, u"#176;C"_s},   {u"a&quot;b'c%20d"_s, u"a b c d"_s},
        {u"&lt;1&gt;"_s, u"<1>"_s},    {u"\r\n  Wind\r\nSpeed \r\n"_s, u"WindSpeed"_s},
        {u"' \t'"_s, QString()},       {u"50%"_s, u"50%"_s},
    };
    for (const auto& [cell, cleaned] : cases) {
        const QString page = u"<table><tr><td class=x>"_s + cell + u"</td></tr></table>"_s;
        EXPECT_EQ(ParseHtmlTable(page).cell(1, 1), cleaned) << qPrintable(cell);
    }
}

TEST(StationTable, PlacesOutsideAreEmptyAndNamesIgnoreCase) {
    const StationTable table = ParseCsvTable(u"outtemp,C,1\nGust,,2\nOUTTEMP,F,3\n,,4\n");
    EXPECT_EQ(FindRow(table, u"OutTemp"), 1);
    EXPECT_EQ(FindRow(table, u"GUST"), 2);
    EXPECT_EQ(FindRow(table, u"Gus"), 0);
    EXPECT_EQ(table.cell(3, 2), u"2");
    EXPECT_EQ(table.cell(1, 4), u"");
    EXPECT_EQ(table.cell(3, 4), u"4");
    for (const auto& [cell, row] :
         std::vector<std::pair<int, qsizetype>>{{1, 0}, {0, 1}, {4, 1}, {1, 5}, {1, -1}})
        EXPECT_TRUE(table.cell(cell, row).isEmpty()) << cell << ',' << row;
}

// Texts on which a parser that looks ahead or moves text more than once would take minutes.
TEST(StationTable, HugeTextsArePassedOverOnce) {
    constexpr int kMany = 200'000;
    const auto many = [](const char16_t* part) {
        return QString::fromUtf16(part).repeated(kMany);
    };
    const auto page = [](const QString& cells) {
        return ParseHtmlTable(u"<table><tr>"_s + cells + u"</tr></table>"_s);
    };
    EXPECT_EQ(page(many(u"</tr><tr>")).rowCount(), kMany + 1);
    EXPECT_EQ(page(u"<td>"_s + many(u"&amp;") + u"</td>"_s).cell(1, 1).size(), kMany);
    EXPECT_EQ(page(many(u"<td")).rowCount(), 1);
    EXPECT_EQ(page(u"<td>"_s + many(u"<")).rowCount(), 1);
    EXPECT_EQ(ParseHtmlTable(many(u"<table>")).rowCount(), 0);
    EXPECT_EQ(ParseCsvTable(many(u",,\n")).rowCount(), kMany);
    EXPECT_EQ(ParseCsvTable(many(u"\"")).rowCount(), 1);
}

} // namespace
} // namespace skyhold
