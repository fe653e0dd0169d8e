// SPDX-License-Identifier: GPL-3.0-or-later
// The table of a weather station's file: one record a row, of name, unit and value.
#pragma once

#include <QString>
#include <QStringView>

#include <array>
#include <cstdint>
#include <vector>

namespace skyhold {

// The cells of a row.
inline constexpr int kNameCell = 1;
inline constexpr int kUnitCell = 2;
inline constexpr int kValueCell = 3;

// Rows 1..rowCount() in file order. Every other place is empty: row 0 is what a name that is not
// found yields. Holds up to 4 G characters.
class StationTable {
  public:
    static constexpr int kCells = 3;

    qsizetype rowCount() const { return static_cast<qsizetype>(ends_.size()); }
    // Valid until the table is changed.
    QStringView cell(int cell, qsizetype row) const;
    // The text ended inside the last record, some of which had been read.
    bool cutShort() const { return cutShort_; }
    // The text ended inside a field in double quotes.
    bool openQuote() const { return openQuote_; }

    void addRow();
    // Fills the next cell of the last row; that row must have one left.
    void addCell(QStringView text);
    void setCutShort() { cutShort_ = true; }
    void setOpenQuote() { openQuote_ = true; }

  private:
    // The cells' texts one after the other, and where each cell of a row ends: a big file costs
    // no allocation a cell.
    QString text_;
    std::vector<std::array<std::uint32_t, kCells>> ends_;
    std::size_t filled_ = 0; // cells of the last row
    bool cutShort_ = false;
    bool openQuote_ = false;
};

// Fields are parted by commas and line ends alike (CR LF, CR or LF); three make a record. A field
// in double quotes keeps its blanks and may hold separators.
StationTable ParseCsvTable(QStringView text);

// The td cells of the first table of a page. A fourth cell in a row ends the parse, as does
// anything that is not closed; what was stored so far remains.
StationTable ParseHtmlTable(QStringView text);

// The first row whose name equals `name` without regard to case, 0 when there is none.
qsizetype FindRow(const StationTable& table, QStringView name);

} // namespace skyhold
