// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/dialogs/kiv_cardinal_points.h"

#include "ui/dialogs/dialog_parts.h"
#include "ui/look/look.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr int kRows = 8;

// Shows what is typed in upper case, with the caret where it was.
void upperCaseAsTyped(QLineEdit* box) {
    QObject::connect(box, &QLineEdit::textEdited, box, [box](const QString& text) {
        const int caret = box->cursorPosition();
        box->setText(text.toUpper());
        box->setCursorPosition(caret);
    });
}

} // namespace

KivCardinalPoints::KivCardinalPoints(std::array<QString, 16>& labels, QWidget* parent)
    : QDialog(parent->window())
    , labels_(labels) {
    setObjectName(u"KivCardinalPoints"_s);
    setWindowTitle(u"Cardinal points of the station's file"_s);
    QVBoxLayout* column = dialogColumn(this);
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(look::kMargin);
    grid->setVerticalSpacing(look::kGap);
    grid->setColumnMinimumWidth(2, look::kMargin);
    for (std::size_t i = 0; i < boxes_.size(); ++i) {
        const int index = static_cast<int>(i);
        auto* degrees = new QLabel(QLocale().toString(index * 22.5, 'f', 1) + u'°', this);
        degrees->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        boxes_[i] = new QLineEdit(labels_[i], this);
        boxes_[i]->setObjectName(u"Symbol"_s + QString::number(index));
        boxes_[i]->setFixedWidth(90);
        degrees->setBuddy(boxes_[i]);
        upperCaseAsTyped(boxes_[i]);
        const int column0 = index / kRows * 3;
        grid->addWidget(degrees, index % kRows, column0);
        grid->addWidget(boxes_[i], index % kRows, column0 + 1);
    }
    column->addLayout(grid);
    addOkAndCancel(this, column);
    centreOver(this, parent->window());
}

void KivCardinalPoints::accept() {
    for (std::size_t i = 0; i < boxes_.size(); ++i)
        labels_[i] = boxes_[i]->text();
    QDialog::accept();
}

} // namespace skyhold
