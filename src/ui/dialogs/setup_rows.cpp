// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/dialogs/setup_rows.h"

#include "ui/dialogs/dialog_parts.h"
#include "ui/look/look.h"

#include <QButtonGroup>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr int kCaptionWidth = 180;

} // namespace

QVBoxLayout* addBlock(QVBoxLayout* step, int indent) {
    auto* block = new QWidget(step->parentWidget());
    auto* column = new QVBoxLayout(block);
    column->setContentsMargins(indent, 0, 0, 0);
    column->setSpacing(look::kGap);
    step->addWidget(block);
    return column;
}

QLineEdit* addPath(QVBoxLayout* step, const QString& caption, const QString& name,
                   std::function<QString(const QString&)> choose) {
    QWidget* parent = step->parentWidget();
    auto* label = new QLabel(caption, parent);
    auto* edit = new QLineEdit(parent);
    edit->setObjectName(name);
    auto* browse = new QPushButton(u"Browse…"_s, parent);
    browse->setObjectName(u"Browse"_s + name);
    browse->setAutoDefault(false);
    QObject::connect(browse, &QPushButton::clicked, edit, [edit, choose = std::move(choose)] {
        const QString chosen = choose(edit->text());
        if (!chosen.isEmpty())
            edit->setText(chosen);
    });
    label->setBuddy(edit);
    label->setFixedWidth(kCaptionWidth);
    auto* row = new QHBoxLayout;
    row->setContentsMargins(0, 6, 0, 0);
    row->setSpacing(look::kGap);
    row->addWidget(label);
    row->addWidget(edit, 1);
    row->addWidget(browse);
    step->addLayout(row);
    return edit;
}

QButtonGroup* addChoice(QVBoxLayout* step, const QString& caption, const char* control,
                        const QStringList& options) {
    QWidget* parent = step->parentWidget();
    auto* holder = new QWidget(parent); // exclusive among themselves alone
    auto* row = new QHBoxLayout(holder);
    row->setContentsMargins(0, 6, 0, 0);
    row->setSpacing(look::kMargin);
    auto* label = new QLabel(caption, holder);
    label->setFixedWidth(kCaptionWidth);
    row->addWidget(label);
    auto* group = new QButtonGroup(holder);
    for (qsizetype i = 0; i < options.size(); ++i) {
        auto* option = new QRadioButton(options[i], holder);
        option->setObjectName(QString::fromLatin1(control) + QString::number(i));
        group->addButton(option, static_cast<int>(i));
        row->addWidget(option);
    }
    row->addStretch();
    group->button(0)->setChecked(true);
    step->addWidget(holder);
    return group;
}

void addExplanation(QVBoxLayout* step, const QString& text) {
    QLabel* label = makeDimmed(text, step->parentWidget());
    label->setWordWrap(true);
    step->addWidget(label);
}

} // namespace skyhold
