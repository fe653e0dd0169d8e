// SPDX-License-Identifier: GPL-3.0-or-later
// The editor of the user data file's columns: their order, their headers, and which are written.
#pragma once

#include "datafiles/column_list.h"
#include "ui/dialogs/dialog_parts.h"

class QListWidget;

namespace skyhold {

class KivFileStructForm : public EditorDialog {
    Q_OBJECT

  public:
    // OK writes the list into `columns`, Cancel nothing.
    KivFileStructForm(DataColumns& columns, QWidget* parent);

    void accept() override;

  private:
    void showEntries();

    DataColumns& columns_;
    ColumnList list_;
    QListWidget* shown_;
};

} // namespace skyhold
