// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/side_by_side.h"

#include "ui/look/look.h"

#include <QBoxLayout>
#include <QEvent>
#include <QScrollArea>

#include <algorithm>

namespace skyhold {

SideBySide::SideBySide(QWidget* wide, const QList<QWidget*>& cards, int beside, QWidget* parent)
    : QWidget(parent)
    , wide_(wide)
    , side_(new QWidget(this))
    , highest_(wide->maximumHeight())
    , beside_(beside)
    , both_(new QBoxLayout(QBoxLayout::TopToBottom, this))
    , cards_(new QBoxLayout(QBoxLayout::LeftToRight, side_)) {
    both_->setContentsMargins(look::kMargin, look::kGap, look::kMargin, look::kGap);
    both_->setSpacing(look::kGap);
    both_->addWidget(wide_, 1, Qt::AlignTop);
    both_->addWidget(side_);
    cards_->setContentsMargins(0, 0, 0, 0);
    cards_->setSpacing(look::kGap);
    for (QWidget* card : cards)
        cards_->addWidget(card);
    cards_->addStretch();
    QWidget* above = parent;
    while (!above->isWindow() && !qobject_cast<QScrollArea*>(above))
        above = above->parentWidget();
    auto* area = qobject_cast<QScrollArea*>(above);
    QWidget* room = area ? area->viewport() : above;
    room->installEventFilter(this);
    arrange(room->size());
}

bool SideBySide::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize)
        arrange(static_cast<QWidget*>(watched)->size());
    return false;
}

// The wide part uses the height that is seen, however high the cards are.
void SideBySide::arrange(QSize room) {
    const int needed = wide_->minimumSizeHint().width() + beside_ + 2 * look::kMargin + look::kGap;
    const bool fits = room.width() >= needed;
    const int least = wide_->minimumSizeHint().height();
    wide_->setFixedHeight(
        std::clamp(room.height() - 2 * look::kGap, least, std::max(least, highest_)));
    const auto across = fits ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom;
    const auto down = fits ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight;
    side_->setFixedWidth(fits ? beside_ : QWIDGETSIZE_MAX);
    side_->setMinimumWidth(fits ? beside_ : 0);
    both_->setDirection(across);
    cards_->setDirection(down);
    both_->update(); // a new direction alone lays nothing out
}

} // namespace skyhold
