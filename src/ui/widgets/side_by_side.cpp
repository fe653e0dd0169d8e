// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/side_by_side.h"

#include "ui/look/look.h"
#include "ui/look/window_unit.h"
#include "ui/widgets/grow_page.h"

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
    room_ = room;
    growsByItself(wide_);
    growsByItself(side_);
    arrange(room->size());
}

bool SideBySide::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize)
        arrange(static_cast<QWidget*>(watched)->size());
    return false;
}

// What stands in it grows with its letters, and is as large as it wants to be only after that.
void SideBySide::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        QMetaObject::invokeMethod(
            this, [this] { arrange(room_->size()); }, Qt::QueuedConnection);
}

// The wide part uses the height that is seen, however high the cards are.
void SideBySide::arrange(QSize room) {
    if (QLayout* layout = wide_->layout())
        layout->activate(); // what it needs now, after any growth
    const qreal unit = std::max(windowUnit(*this), 1.0);
    const int beside = qRound(beside_ * unit);
    const int needed = wide_->minimumSizeHint().width() + beside + 2 * look::kMargin + look::kGap;
    const bool fits = room.width() >= needed;
    const int least = wide_->minimumSizeHint().height();
    wide_->setFixedHeight(std::clamp(room.height() - 2 * look::kGap, least,
                                     std::max(least, qRound(highest_ * unit))));
    const auto across = fits ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom;
    const auto down = fits ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight;
    side_->setFixedWidth(fits ? beside : QWIDGETSIZE_MAX);
    side_->setMinimumWidth(fits ? beside : 0);
    both_->setDirection(across);
    cards_->setDirection(down);
    both_->update(); // a new direction alone lays nothing out
}

} // namespace skyhold
