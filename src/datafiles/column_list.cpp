// SPDX-License-Identifier: GPL-3.0-or-later
#include "datafiles/column_list.h"

#include "settings/key_table.h"

#include <utility>

namespace skyhold {

namespace {

constexpr qsizetype kPrefixLength = 5; // "(01) "

ColumnEntry entryOf(const DataColumn& column) {
    const QString number = QString::number(column.Cal).rightJustified(2, u'0');
    return {.text = QStringLiteral("(%1) %2").arg(number, column.Hdr.trimmed()),
            .item = column.Cal,
            .checked = column.Prt};
}

void move(ColumnList& list, int by) {
    const int target = list.selected + by;
    const int size = static_cast<int>(list.entries.size());
    if (list.selected < 0 || list.selected >= size || target < 0 || target >= size)
        return;
    std::swap(list.entries[static_cast<std::size_t>(list.selected)],
              list.entries[static_cast<std::size_t>(target)]);
    list.selected = target;
}

} // namespace

ColumnList columnList(const DataColumns& columns) {
    ColumnList list;
    for (std::size_t i = 0; i < columns.size(); ++i)
        list.entries[i] = entryOf(columns[i]);
    return list;
}

void moveUp(ColumnList& list) {
    move(list, -1);
}

void moveDown(ColumnList& list) {
    move(list, 1);
}

void setDefaults(ColumnList& list) {
    for (std::size_t i = 0; i < list.entries.size(); ++i)
        list.entries[i] = entryOf(defaultDataColumn(static_cast<int>(i) + 1));
}

DataColumns columnsOf(const ColumnList& list) {
    DataColumns columns;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const ColumnEntry& entry = list.entries[i];
        columns[i] = {
            .Hdr = entry.text.mid(kPrefixLength), .Cal = entry.item, .Prt = entry.checked};
    }
    return columns;
}

} // namespace skyhold
