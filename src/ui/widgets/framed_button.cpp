// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/framed_button.h"

#include "ui/look/look.h"

#include <QPainter>

namespace skyhold {

QFont FramedButton::boldFont() const {
    QFont bold = font();
    bold.setBold(true);
    return bold;
}

// It stays when the button is checked.
QSize FramedButton::sizeHint() const {
    const QFontMetrics metrics(isCheckable() ? boldFont() : font());
    return {metrics.horizontalAdvance(text()) + 16, metrics.height() + 8};
}

void FramedButton::paintEvent(QPaintEvent*) {
    const bool panel = lookInForce() == Look::Panel;
    const QColor chosenFill = panel ? look::kPrimary : look::kText;
    const QColor chosenInk = panel ? look::inkOn(chosenFill) : look::kWindow;
    const QColor ink = !isEnabled() ? look::kDisabledText : isChecked() ? chosenInk : look::kText;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double thick = isChecked() ? 2 : 1;
    const bool marked = isEnabled() && (isChecked() || hasFocus());
    painter.setPen(QPen(marked ? look::kAccent : look::kEdge, thick));
    painter.setBrush(isChecked()                ? chosenFill
                     : isDown() || underMouse() ? look::kButton
                                                : look::kField);
    const double inset = thick / 2;
    painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), 4, 4);
    painter.setFont(isChecked() ? boldFont() : font());
    painter.setPen(ink);
    painter.drawText(rect(), Qt::AlignCenter, text());
    if (!hasFocus())
        return;
    painter.setPen(QPen(ink, 1, Qt::DotLine));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(QRectF(rect()).adjusted(3.5, 3.5, -3.5, -3.5));
}

} // namespace skyhold
