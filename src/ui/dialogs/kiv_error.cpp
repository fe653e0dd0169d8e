// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/dialogs/kiv_error.h"

#include "ui/dialogs/dialog_parts.h"
#include "ui/look/look.h"
#include "ui/window/main_window.h"

#include <QFontMetrics>
#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

namespace skyhold {

namespace {

// Longer lines are wrapped.
constexpr int kWidestText = 460;

} // namespace

KivError::KivError(const Message& message, const QString& caption, QWidget* parent)
    : QDialog(parent) {
    setObjectName(QStringLiteral("KivError"));
    setWindowTitle(message.title.isEmpty() ? caption : message.title);
    QVBoxLayout* column = dialogColumn(this);

    if (!message.about.isEmpty()) {
        auto* about = new QLabel(message.about, this);
        about->setObjectName(QStringLiteral("LblAbout"));
        about->setTextFormat(Qt::PlainText);
        QFont bold = about->font();
        bold.setBold(true);
        about->setFont(bold);
        column->addWidget(about);
    }
    auto* text = new QLabel(message.text, this);
    text->setObjectName(QStringLiteral("LblText"));
    text->setTextFormat(Qt::PlainText);
    text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    const int needed =
        QFontMetrics(text->font()).boundingRect(QRect(), Qt::AlignLeft, message.text).width();
    text->setMinimumWidth(300);
    if (needed > kWidestText) {
        text->setWordWrap(true);
        text->setFixedWidth(kWidestText);
    }
    column->addWidget(text);

    switch (message.style) {
    case MessageStyle::Ok:
        addButtons({{"OK", MessageAnswer::Ok}}, column);
        break;
    case MessageStyle::YesNo:
        addButtons({{"&Yes", MessageAnswer::Yes}, {"&No", MessageAnswer::No}}, column);
        break;
    case MessageStyle::YesNoCancel:
        addButtons({{"&Yes", MessageAnswer::Yes},
                    {"&No", MessageAnswer::No},
                    {"Cancel", MessageAnswer::Cancel}},
                   column);
        break;
    }
}

void KivError::addButtons(const std::vector<Choice>& choices, QVBoxLayout* column) {
    auto* row = new QHBoxLayout;
    row->setContentsMargins(0, 4, 0, 0);
    row->setSpacing(look::kGap);
    row->addStretch();
    for (std::size_t i = 0; i < choices.size(); ++i) {
        const Choice& choice = choices[i];
        auto* button = new QPushButton(QString::fromLatin1(choice.caption), this);
        button->setObjectName(QStringLiteral("Butt%1").arg(i));
        button->setMinimumSize(96, 32);
        connect(button, &QPushButton::clicked, this, [this, answer = choice.answer] {
            answer_ = answer;
            accept();
        });
        row->addWidget(button);
        if (&choice == &choices.back()) { // the safest
            answer_ = choice.answer;
            button->setDefault(true);
            button->setFocus();
        }
    }
    row->addStretch();
    column->addLayout(row);
}

MessageAnswer KivError::ask() {
    if (const QWidget* over = parentWidget())
        centreOver(this, over->window());
    execOver(*this);
    return answer_;
}

void KivError::showBeside() {
    setAttribute(Qt::WA_DeleteOnClose);
    if (const QWidget* over = parentWidget())
        centreOver(this, over->window());
    show();
}

ShowMessage makeMessageDialog(KivSHMainform& window) {
    return [&window](const Message& message) {
        if (window.isMinimized())
            window.restore();
        return KivError(message, window.windowTitle(), &window).ask();
    };
}

Notices makeNotices(KivSHMainform& window) {
    const auto shown = std::make_shared<QPointer<KivError>>();
    const auto close = [shown] {
        if (*shown)
            (*shown)->close();
    };
    const auto show = [shown, close, &window](const Message& message) {
        close();
        if (window.isMinimized())
            window.restore();
        *shown = new KivError(message, window.windowTitle(), &window);
        (*shown)->showBeside();
    };
    return {show, close};
}

} // namespace skyhold
