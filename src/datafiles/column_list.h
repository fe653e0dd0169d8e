// SPDX-License-Identifier: GPL-3.0-or-later
// The list of the structure editor: the columns of the user data file while they are being moved
// and switched on or off.
#pragma once

#include "datafiles/data_items.h"

namespace skyhold {

struct ColumnEntry {
    QString text; // "(01) Date": data item and header
    int item = 1; // 1..25
    bool checked = true;
};

struct ColumnList {
    std::array<ColumnEntry, std::tuple_size_v<DataColumns>> entries;
    int selected = -1; // -1 is none
};

ColumnList columnList(const DataColumns& columns);

// Move the selected entry one place; at the end of the list and without a selection nothing.
void moveUp(ColumnList& list);
void moveDown(ColumnList& list);

// "(01) Date" .. "(25) Safe Condtition", all checked.
void setDefaults(ColumnList& list);

// What OK stores: the entries in their order.
DataColumns columnsOf(const ColumnList& list);

} // namespace skyhold
