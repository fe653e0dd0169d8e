// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/pages/find_setting.h"

#include "ui/dialogs/dialog_parts.h"
#include "ui/pages/page_parts.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

FindSetting::FindSetting(std::vector<SettingPlace> places, QWidget* parent)
    : QDialog(parent)
    , places_(std::move(places))
    , text_(new QLineEdit(this))
    , list_(new QListWidget(this)) {
    setObjectName(u"FindSetting"_s);
    setWindowTitle(u"Find a setting"_s);
    QVBoxLayout* column = dialogColumn(this);
    text_->setObjectName(u"FindText"_s);
    text_->setPlaceholderText(u"Words of its name or page"_s);
    text_->setAccessibleName(u"Words of its name or page"_s);
    text_->installEventFilter(this);
    list_->setObjectName(u"FindList"_s);
    list_->setAccessibleName(u"Settings"_s);
    list_->setMinimumSize(520, 320);
    list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    column->addWidget(text_);
    column->addWidget(list_);
    addHint(column, u"The arrows choose, Enter goes there"_s);
    const OkAndCancel buttons = addOkAndCancel(this, column);
    buttons.ok->setText(u"Go there"_s);
    connect(text_, &QLineEdit::textChanged, this, &FindSetting::list);
    connect(list_, &QListWidget::itemActivated, this, &FindSetting::accept);
    list({});
    text_->setFocus();
    centreOver(this, parent->window());
}

void FindSetting::list(const QString& text) {
    found_ = findPlaces(places_, text);
    list_->clear();
    for (const SettingPlace& place : found_)
        list_->addItem(place.title + u"  –  "_s + pageTitle(place.page));
    list_->setCurrentRow(0);
}

void FindSetting::accept() {
    const int row = list_->currentRow();
    if (row < 0)
        return;
    chosen_ = found_[static_cast<std::size_t>(row)];
    QDialog::accept();
}

// While words are typed the keys that move go to the list.
bool FindSetting::eventFilter(QObject*, QEvent* event) {
    if (event->type() != QEvent::KeyPress)
        return false;
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key != Qt::Key_Up && key != Qt::Key_Down && key != Qt::Key_PageUp &&
        key != Qt::Key_PageDown)
        return false;
    QCoreApplication::sendEvent(list_, event);
    return true;
}

} // namespace skyhold
