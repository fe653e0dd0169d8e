// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/dialogs/dialog_parts.h"

#include "ui/look/look.h"

#include <QButtonGroup>
#include <QEventLoop>
#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

#include <algorithm>

namespace skyhold {

namespace {

// The height of the verdict, over the width of its window; nothing in other windows.
QRect bannerOf(const QWidget* window) {
    const auto* verdict = window->findChild<QWidget*>(QStringLiteral("LblStatus"));
    if (!verdict)
        return {};
    const QWidget* card = verdict->parentWidget();
    return {QPoint(window->frameGeometry().left(), card->mapToGlobal(QPoint()).y()),
            QSize(window->frameGeometry().width(), card->height())};
}

// Below the banner, or beside its window; where neither has room it stays.
QPoint besideBanner(const QRect& dialog, const QRect& banner, const QRect& screen) {
    if (!dialog.intersects(banner))
        return dialog.topLeft();
    if (banner.bottom() + dialog.height() < screen.bottom())
        return {dialog.left(), banner.bottom() + 1};
    if (banner.right() + dialog.width() < screen.right())
        return {banner.right() + 1, dialog.top()};
    if (banner.left() - dialog.width() > screen.left())
        return {banner.left() - dialog.width(), dialog.top()};
    return dialog.topLeft();
}

void moveInside(QDialog* dialog, QPoint corner, const QWidget* over) {
    constexpr QSize kFrame(8, 40); // it is only known once the dialog stands
    const QRect screen = over->screen()->availableGeometry();
    const QSize size = dialog->sizeHint() + kFrame;
    const int right = std::max(screen.left(), screen.right() - size.width());
    const int bottom = std::max(screen.top(), screen.bottom() - size.height());
    const QPoint inside(std::clamp(corner.x(), screen.left(), right),
                        std::clamp(corner.y(), screen.top(), bottom));
    dialog->move(besideBanner(QRect(inside, size), bannerOf(over->window()), screen));
}

QPointer<EditorDialog> openEditor;

} // namespace

QVBoxLayout* dialogColumn(QDialog* dialog) {
    // A dialog is answered or closed; to minimise or maximise it would only lose it.
    dialog->setWindowFlags((dialog->windowFlags() | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                            Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint) &
                           ~(Qt::WindowMinMaxButtonsHint | Qt::WindowContextHelpButtonHint));
    auto* column = new QVBoxLayout(dialog);
    column->setContentsMargins(20, 18, 20, 16);
    column->setSpacing(look::kMargin);
    column->setSizeConstraint(QLayout::SetFixedSize);
    return column;
}

QLabel* makeDimmed(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setTextFormat(Qt::PlainText);
    followLook(label, [label] {
        QPalette palette;
        palette.setColor(QPalette::WindowText, look::kDimText);
        label->setPalette(palette);
    });
    return label;
}

void tabToChosen(const QButtonGroup& group) {
    const QAbstractButton* chosen = group.checkedButton();
    for (QAbstractButton* button : group.buttons())
        button->setFocusPolicy(!chosen || button == chosen ? Qt::StrongFocus : Qt::ClickFocus);
}

OkAndCancel addOkAndCancel(QDialog* dialog, QVBoxLayout* column) {
    const OkAndCancel buttons{new QPushButton(QStringLiteral("OK"), dialog),
                              new QPushButton(QStringLiteral("Cancel"), dialog)};
    buttons.ok->setObjectName(QStringLiteral("ButtOK"));
    buttons.ok->setDefault(true);
    buttons.cancel->setObjectName(QStringLiteral("ButtCancel"));
    buttons.cancel->setAutoDefault(false);
    QObject::connect(buttons.ok, &QPushButton::clicked, dialog, &QDialog::accept);
    QObject::connect(buttons.cancel, &QPushButton::clicked, dialog, &QDialog::reject);

    auto* row = new QHBoxLayout;
    row->setContentsMargins(0, 4, 0, 0);
    row->setSpacing(look::kGap);
    row->addStretch();
    for (QPushButton* button : {buttons.ok, buttons.cancel}) {
        button->setMinimumSize(96, 32);
        row->addWidget(button);
    }
    column->addLayout(row);
    return buttons;
}

int execOver(QDialog& dialog) {
    if (dialog.parentWidget())
        dialog.setWindowModality(Qt::WindowModal);
    return dialog.exec();
}

int EditorDialog::exec() {
    if (openEditor) {
        openEditor->raise();
        openEditor->activateWindow();
        return Rejected;
    }
    openEditor = this;
    setResult(Rejected);
    QEventLoop answer;
    connect(this, &QDialog::finished, &answer, [&answer] { answer.quit(); });
    show();
    activateWindow();
    answer.exec(QEventLoop::DialogExec);
    openEditor = nullptr;
    return result();
}

void placeNear(QDialog* dialog, const QWidget* item) {
    dialog->adjustSize();
    const QRect screen = item->screen()->availableGeometry();
    QPoint corner = item->mapToGlobal(QPoint(0, item->height() + 4));
    if (corner.y() + dialog->height() > screen.bottom())
        corner.setY(item->mapToGlobal(QPoint(0, 0)).y() - dialog->height() - 40);
    moveInside(dialog, corner, item);
}

void centreOver(QDialog* dialog, const QWidget* window) {
    dialog->adjustSize();
    const QRect over = window->frameGeometry();
    moveInside(dialog,
               over.topLeft() + QPoint((over.width() - dialog->width()) / 2,
                                       (over.height() - dialog->height()) / 2),
               window);
}

} // namespace skyhold
