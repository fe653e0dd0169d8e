// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/dialogs/kiv_file_struct_form.h"

#include "ui/look/look.h"

#include <QHBoxLayout>
#include <QItemSelectionModel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSignalBlocker>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr int kMostHeader = 25; // characters

// Edits the header of "(01) Date" in its place; the data item before it stays.
class HeaderEditor : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem&,
                          const QModelIndex&) const override {
        auto* line = new QLineEdit(parent);
        line->setMaxLength(kMostHeader);
        return line;
    }

    void setEditorData(QWidget* editor, const QModelIndex& index) const override {
        static_cast<QLineEdit*>(editor)->setText(index.data().toString().section(u' ', 1));
    }

    void setModelData(QWidget* editor, QAbstractItemModel* model,
                      const QModelIndex& index) const override {
        const QString item = index.data().toString().section(u' ', 0, 0);
        model->setData(index, item + u' ' + static_cast<QLineEdit*>(editor)->text().trimmed());
    }
};

} // namespace

KivFileStructForm::KivFileStructForm(DataColumns& columns, QWidget* parent)
    : EditorDialog(parent)
    , columns_(columns)
    , list_(columnList(columns))
    , shown_(new QListWidget(this)) {
    setObjectName(u"KivFileStructForm"_s);
    setWindowTitle(u"Columns of the data file"_s);
    shown_->setObjectName(u"ListCol"_s);
    shown_->setFixedSize(300, 508);
    for (std::size_t i = 0; i < list_.entries.size(); ++i) {
        auto* item = new QListWidgetItem(shown_);
        item->setFlags(item->flags() | Qt::ItemIsEditable);
    }
    shown_->setItemDelegate(new HeaderEditor(shown_));
    showEntries();
    connect(shown_, &QListWidget::itemSelectionChanged, this, [this] {
        const QModelIndexList selected = shown_->selectionModel()->selectedIndexes();
        list_.selected = selected.isEmpty() ? -1 : selected.first().row();
    });
    connect(shown_, &QListWidget::itemChanged, this, [this](const QListWidgetItem* item) {
        ColumnEntry& entry = list_.entries[static_cast<std::size_t>(shown_->row(item))];
        entry.checked = item->checkState() == Qt::Checked;
        entry.text = item->text();
    });

    auto* buttons = new QVBoxLayout;
    buttons->setSpacing(look::kGap);
    const auto addButton = [&](const QString& name, const QString& text, auto change) {
        auto* button = new QPushButton(text, this);
        button->setObjectName(name);
        button->setAutoDefault(false);
        buttons->addWidget(button);
        connect(button, &QPushButton::clicked, this, [this, change] {
            change();
            showEntries();
        });
    };
    addButton(u"ButtArrUp"_s, u"Move &up"_s, [this] { moveUp(list_); });
    addButton(u"ButtArrDown"_s, u"Move dow&n"_s, [this] { moveDown(list_); });
    addButton(u"ButtHeader"_s, u"Change &header"_s, [this] {
        if (list_.selected >= 0)
            shown_->editItem(shown_->item(list_.selected));
    });
    buttons->addStretch();
    addButton(u"ButtDefaults"_s, u"&Defaults"_s, [this] { setDefaults(list_); });

    QVBoxLayout* column = dialogColumn(this);
    auto* row = new QHBoxLayout;
    row->setSpacing(look::kMargin);
    row->addWidget(shown_);
    row->addLayout(buttons);
    column->addLayout(row);
    addOkAndCancel(this, column);
    centreOver(this, parent->window());
}

void KivFileStructForm::showEntries() {
    const QSignalBlocker quiet(shown_);
    for (std::size_t i = 0; i < list_.entries.size(); ++i) {
        QListWidgetItem* item = shown_->item(static_cast<int>(i));
        item->setText(list_.entries[i].text);
        item->setCheckState(list_.entries[i].checked ? Qt::Checked : Qt::Unchecked);
    }
    shown_->setCurrentRow(list_.selected);
}

void KivFileStructForm::accept() {
    columns_ = columnsOf(list_);
    QDialog::accept();
}

} // namespace skyhold
