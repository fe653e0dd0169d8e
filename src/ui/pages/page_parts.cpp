#include "ui/pages/page_parts.h"

#include "ui/bind.h"
#include "ui/kiv_get_number.h"
#include "ui/look.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QRadioButton>
#include <QVBoxLayout>

namespace skyhold {

QVBoxLayout* pageColumn(QWidget* page) {
    auto* column = new QVBoxLayout(page);
    column->setContentsMargins(look::kMargin, look::kMargin, look::kMargin, look::kMargin);
    column->setSpacing(look::kMargin);
    return column;
}

QVBoxLayout* addGroup(QWidget* page, const QString& title) {
    auto* column = new QVBoxLayout(new QGroupBox(title, page));
    column->setContentsMargins(14, 8, 14, 10);
    column->setSpacing(6);
    return column;
}

QLabel* addHint(QBoxLayout* into, const QString& text) {
    auto* hint = new QLabel(text, into->parentWidget());
    hint->setWordWrap(true);
    QPalette palette;
    palette.setColor(QPalette::WindowText, look::kDimText);
    hint->setPalette(palette);
    into->addWidget(hint);
    return hint;
}

QString indexed(const QByteArray& control, std::size_t index) {
    return QString::fromLatin1(control) + QString::number(index);
}

QCheckBox* makeCheck(QWidget* parent, const QString& name, const QString& text, CheckBox& record) {
    auto* box = new QCheckBox(text, parent);
    box->setObjectName(name);
    bind(box, record);
    return box;
}

KivGetNumber* makeNumber(QWidget* parent, const QString& name, NumberBox& record) {
    auto* box = new KivGetNumber(parent);
    box->setObjectName(name);
    box->setFixedWidth(64);
    bind(box, record);
    return box;
}

KivGetNumber* addNumberRow(QBoxLayout* into, const QString& caption, const QString& name,
                           NumberBox& record, const QString& unit) {
    QWidget* parent = into->parentWidget();
    auto* label = new QLabel(caption, parent);
    KivGetNumber* box = makeNumber(parent, name, record);
    label->setBuddy(box);
    auto* row = new QHBoxLayout;
    row->setSpacing(look::kGap);
    row->addWidget(label);
    row->addStretch();
    row->addWidget(box);
    row->addWidget(new QLabel(unit, parent));
    into->addLayout(row);
    return box;
}

QButtonGroup* addOptions(QBoxLayout* into, const char* control, const QStringList& captions,
                         OptionGroup& record) {
    QWidget* parent = into->parentWidget();
    auto* group = new QButtonGroup(parent);
    auto* row = new QHBoxLayout;
    row->setSpacing(look::kMargin);
    for (qsizetype i = 0; i < captions.size(); ++i) {
        auto* option = new QRadioButton(captions[i], parent);
        option->setObjectName(indexed(control, static_cast<std::size_t>(i)));
        group->addButton(option, static_cast<int>(i));
        row->addWidget(option);
    }
    row->addStretch();
    into->addLayout(row);
    bind(group, record);
    return group;
}

} // namespace skyhold
