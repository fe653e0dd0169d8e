// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/pages/page_parts.h"

#include "ui/dialogs/choose_path.h"
#include "ui/dialogs/dialog_parts.h"
#include "ui/look/look.h"
#include "ui/widgets/bind.h"
#include "ui/widgets/hold_focus.h"
#include "ui/widgets/kiv_get_number.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QFocusEvent>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <QVBoxLayout>

namespace skyhold {

namespace {

// Opening the box's own menu or another window does not count as leaving the box, nor does coming
// back from them count as entering it.
bool counts(const QEvent& event) {
    const bool ofFocus = event.type() == QEvent::FocusIn || event.type() == QEvent::FocusOut;
    return !ofFocus || leavesControl(static_cast<const QFocusEvent&>(event).reason());
}

// Calls `act` on every event of one type.
class EventRule : public QObject {
  public:
    EventRule(QObject* watched, QEvent::Type type, std::function<void()> act)
        : QObject(watched)
        , type_(type)
        , act_(std::move(act)) {
        watched->installEventFilter(this);
    }

    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == type_ && counts(*event))
            act_();
        return false;
    }

  private:
    QEvent::Type type_;
    std::function<void()> act_;
};

} // namespace

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
    QLabel* hint = makeDimmed(text, into->parentWidget());
    hint->setWordWrap(true);
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

QLineEdit* makeText(QWidget* parent, const QString& name, TextBox& record) {
    auto* box = new QLineEdit(parent);
    box->setObjectName(name);
    bind(box, record);
    // After the press of a click has set its caret.
    new EventRule(box, QEvent::FocusIn,
                  [box] { QTimer::singleShot(0, box, &QLineEdit::selectAll); });
    return box;
}

void onLeaving(QLineEdit* box, std::function<void()> rule) {
    new EventRule(box, QEvent::FocusOut, rule);
    new EventRule(box, QEvent::EnabledChange, std::move(rule)); // a session locks it
}

QLineEdit* makePath(QWidget* parent, const QString& name, Label& record) {
    auto* box = new QLineEdit(parent);
    box->setObjectName(name);
    box->setReadOnly(true);
    follow(box, record.Caption, [box](const QString& path) {
        box->setText(path);
        box->setToolTip(path);
    });
    followVisible(box, record.Visible);
    return box;
}

FolderChoice makeFolderChoice(QWidget* parent, const QString& buttonName, Button& button,
                              const QString& folderName, Label& folder,
                              const QString& dialogTitle) {
    const FolderChoice made{new QPushButton(QStringLiteral("Fold&er…"), parent),
                            makePath(parent, folderName, folder)};
    made.button->setObjectName(buttonName);
    bind(made.button, button);
    QObject::connect(made.button, &QPushButton::clicked, parent,
                     [&button, &folder, parent, dialogTitle] {
                         const QString chosen = chooseFolder(parent, dialogTitle, folder.Caption);
                         if (!chosen.isEmpty() && button.Enabled)
                             folder.Caption = chosen;
                     });
    return made;
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
