// SPDX-License-Identifier: GPL-3.0-or-later
#include "datafiles/station_table.h"

namespace skyhold {

QStringView StationTable::cell(int cell, qsizetype row) const {
    if (cell < 1 || cell > kCells || row < 1 || row > rowCount())
        return {};
    const auto column = static_cast<std::size_t>(cell - 1);
    const auto at = static_cast<std::size_t>(row - 1);
    qsizetype start = 0;
    if (column > 0)
        start = ends_[at][column - 1];
    else if (at > 0)
        start = ends_[at - 1].back();
    return QStringView(text_).mid(start, ends_[at][column] - start);
}

void StationTable::addRow() {
    const auto end = static_cast<std::uint32_t>(text_.size());
    ends_.push_back({end, end, end});
    filled_ = 0;
}

void StationTable::addCell(QStringView text) {
    text_ += text;
    const auto end = static_cast<std::uint32_t>(text_.size());
    for (std::size_t column = filled_; column < kCells; ++column)
        ends_.back()[column] = end;
    ++filled_;
}

qsizetype FindRow(const StationTable& table, QStringView name) {
    for (qsizetype row = 1; row <= table.rowCount(); ++row) {
        const QStringView found = table.cell(kNameCell, row);
        if (found.size() == name.size() && found.compare(name, Qt::CaseInsensitive) == 0)
            return row;
    }
    return 0;
}

} // namespace skyhold
