#include "ui/dialogs/dialog_parts.h"

#include "ui/look/look.h"

#include <QButtonGroup>
#include <QDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

#include <algorithm>

namespace skyhold {

namespace {

void moveInside(QDialog* dialog, QPoint corner, const QRect& screen) {
    const QSize size = dialog->frameGeometry().size().expandedTo(dialog->sizeHint());
    const int right = std::max(screen.left(), screen.right() - size.width());
    const int bottom = std::max(screen.top(), screen.bottom() - size.height());
    dialog->move(std::clamp(corner.x(), screen.left(), right),
                 std::clamp(corner.y(), screen.top(), bottom));
}

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

void placeNear(QDialog* dialog, const QWidget* item) {
    dialog->adjustSize();
    const QRect screen = item->screen()->availableGeometry();
    QPoint corner = item->mapToGlobal(QPoint(0, item->height() + 4));
    if (corner.y() + dialog->height() > screen.bottom())
        corner.setY(item->mapToGlobal(QPoint(0, 0)).y() - dialog->height() - 40);
    moveInside(dialog, corner, screen);
}

void centreOver(QDialog* dialog, const QWidget* window) {
    dialog->adjustSize();
    const QRect over = window->frameGeometry();
    moveInside(dialog,
               over.topLeft() + QPoint((over.width() - dialog->width()) / 2,
                                       (over.height() - dialog->height()) / 2),
               window->screen()->availableGeometry());
}

} // namespace skyhold
