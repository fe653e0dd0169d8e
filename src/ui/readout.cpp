#include "ui/readout.h"

#include "ui/look.h"

#include <QFontMetrics>
#include <QPaintEvent>
#include <QPainter>

namespace skyhold {

Readout::Readout(QWidget* parent)
    : QWidget(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void Readout::setText(const QString& text) {
    if (text == text_)
        return;
    text_ = text;
    update();
}

void Readout::setInk(const QColor& ink) {
    if (ink == ink_)
        return;
    ink_ = ink;
    update();
}

void Readout::setPixelSize(int size, bool bold) {
    QFont changed = font();
    changed.setPixelSize(size);
    changed.setBold(bold);
    setFont(changed);
}

void Readout::reserve(const QString& widest) {
    widest_ = widest;
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    updateGeometry();
}

QSize Readout::sizeHint() const {
    const QFontMetrics metrics(font());
    return {metrics.horizontalAdvance(widest_) + 2, metrics.height() * (wrap_ ? 2 : 1)};
}

QSize Readout::minimumSizeHint() const {
    return sizeHint();
}

void Readout::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    if (hasFocus()) {
        painter.setPen(look::kAccent);
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }
    if (text_.isEmpty())
        return;
    painter.setPen(ink_.isValid() && isEnabled() ? ink_ : palette().color(foregroundRole()));

    const int flags = static_cast<int>(alignment_) | (wrap_ ? Qt::TextWordWrap : 0);
    const auto fits = [&](const QFont& font) {
        const QRect needed = QFontMetrics(font).boundingRect(rect(), flags, text_);
        return needed.width() <= width() && needed.height() <= height();
    };
    QFont fitted = font();
    const int smallest = cutInMiddle_ ? fitted.pixelSize() : fitted.pixelSize() * 2 / 3;
    while (fitted.pixelSize() > smallest && !fits(fitted))
        fitted.setPixelSize(fitted.pixelSize() - 1);
    painter.setFont(fitted);

    QString shown = text_;
    if (!fits(fitted)) {
        const QFontMetrics metrics(fitted);
        // A wrapped text leaves some of each line's end empty.
        const int lines = wrap_ ? std::max(1, height() / metrics.height()) : 1;
        shown = metrics.elidedText(text_, cutInMiddle_ ? Qt::ElideMiddle : Qt::ElideRight,
                                   width() * lines - (lines - 1) * 60);
    }
    painter.drawText(rect(), flags, shown);
}

Swatch::Swatch(QWidget* parent)
    : Readout(parent) {
    setAlignment(Qt::AlignCenter);
    setFixedHeight(26);
}

void Swatch::setFill(const QColor& fill) {
    if (fill == fill_)
        return;
    fill_ = fill;
    constexpr int kMiddleGrey = 128;
    setInk(qGray(fill.rgb()) < kMiddleGrey ? Qt::white : Qt::black);
    update();
}

void Swatch::paintEvent(QPaintEvent* event) {
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(hasFocus() ? look::kAccent : fill_.darker(130), hasFocus() ? 2 : 1));
        painter.setBrush(fill_);
        painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 4, 4);
    }
    Readout::paintEvent(event);
}

LampWidget::LampWidget(int diameter, QWidget* parent)
    : QWidget(parent) {
    setFixedSize(diameter, diameter);
}

void LampWidget::setColour(const QColor& colour) {
    if (colour == colour_)
        return;
    colour_ = colour;
    update();
}

void LampWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(colour_.darker(160), 1.5));
    painter.setBrush(colour_);
    painter.drawEllipse(QRectF(rect()).adjusted(1, 1, -1, -1));
}

Card::Card(QWidget* parent)
    : QWidget(parent)
    , fill_(look::kCard) {}

void Card::setFill(const QColor& fill) {
    if (fill == fill_)
        return;
    fill_ = fill;
    update();
}

void Card::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill_);
    painter.drawRoundedRect(rect(), 6, 6);
}

} // namespace skyhold
