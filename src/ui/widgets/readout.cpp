// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/readout.h"

#include "ui/look/look.h"

#include <QFontMetrics>
#include <QPaintEvent>
#include <QPainter>

#include <algorithm>

namespace skyhold {

namespace {

constexpr int kSmallestText = 11; // pixels; below it words are given up

} // namespace

Readout::Readout(QWidget* parent)
    : QWidget(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void Readout::setText(const QString& text) {
    if (text == text_)
        return;
    text_ = text;
    update();
    Q_EMIT textChanged(text);
}

void Readout::setInk(const QColor& ink) {
    if (ink == ink_)
        return;
    ink_ = ink;
    update();
}

void Readout::setTone(Tone tone) {
    if (tone == tone_)
        return;
    tone_ = tone;
    update();
}

void Readout::setOld(bool old) {
    if (old == old_)
        return;
    old_ = old;
    update();
}

void Readout::setGround(const QColor& ground) {
    if (ground == ground_)
        return;
    ground_ = ground;
    update();
}

QColor Readout::shownInk() const {
    if (old_)
        return look::kDimText;
    if (ink_.isValid())
        return look::ink(ink_, ground_.isValid() ? look::ground(ground_) : look::kCard);
    switch (tone_) {
    case Tone::Text:
        break;
    case Tone::Dim:
        return look::kDimText;
    case Tone::Disabled:
        return look::kDisabledText;
    case Tone::Accent:
        return look::ink(look::kAccent, look::kCard);
    case Tone::Strip:
        return look::kStripText;
    }
    return palette().color(foregroundRole());
}

void Readout::setPixelSize(int size, bool bold) {
    size_ = size;
    QFont changed = font();
    changed.setPixelSize(qRound(size * unit_));
    changed.setBold(bold);
    setFont(changed);
}

void Readout::grow(qreal unit) {
    unit_ = unit;
    if (size_ > 0)
        setPixelSize(size_, font().bold());
    updateGeometry();
}

void Readout::reserve(const QString& widest) {
    widest_ = widest;
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    updateGeometry();
}

QSize Readout::sizeHint() const {
    const QFontMetrics metrics(font());
    return QSize(metrics.horizontalAdvance(widest_) + 2, metrics.height() * (wrap_ ? 2 : 1))
        .grownBy(contentsMargins());
}

QSize Readout::minimumSizeHint() const {
    return sizeHint();
}

int Readout::textFlags() const {
    return static_cast<int>(alignment_) | (wrap_ ? Qt::TextWordWrap : 0);
}

double Readout::share(const QFont& font) const {
    const QRect room = contentsRect();
    const QFontMetrics metrics(font);
    const QRect needed = metrics.boundingRect(room, textFlags(), text_);
    // The box of a line may be higher by a rounding than the line that is reserved for it.
    const int high = wrap_ ? needed.height() : metrics.height();
    return std::min(static_cast<double>(room.width()) / std::max(needed.width(), 1),
                    static_cast<double>(room.height()) / std::max(high, 1));
}

QFont Readout::fittedFont() const {
    QFont fitted = font();
    const int chosen = fitted.pixelSize();
    const int smallest =
        cutInMiddle_ ? chosen : std::max(chosen * 2 / 3, std::min(chosen, kSmallestText));
    // A line's size follows its font's, so that few fonts are loaded to try; a wrapped text's does
    // not.
    for (double room = share(fitted); room < 1 && fitted.pixelSize() > smallest;
         room = share(fitted)) {
        const int size = fitted.pixelSize();
        const int next = wrap_ ? size - 1 : std::min(size - 1, static_cast<int>(size * room));
        fitted.setPixelSize(std::max(next, smallest));
    }
    return fitted;
}

void Readout::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    if (hasFocus()) {
        painter.setPen(look::kAccent);
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }
    if (text_.isEmpty())
        return;
    painter.setPen(isEnabled() ? shownInk() : palette().color(foregroundRole()));
    const QFont fitted = fittedFont();
    painter.setFont(fitted);

    QString shown = text_;
    const QRect room = contentsRect();
    if (share(fitted) < 1) {
        const QFontMetrics metrics(fitted);
        // A wrapped text leaves some of each line's end empty.
        const int lines = wrap_ ? std::max(1, room.height() / metrics.height()) : 1;
        shown = metrics.elidedText(text_, cutInMiddle_ ? Qt::ElideMiddle : Qt::ElideRight,
                                   room.width() * lines - (lines - 1) * 60);
    }
    painter.drawText(room, textFlags(), shown);
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
    update();
}

void Swatch::shrinkToChip() {
    chip_ = true;
    setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    setContentsMargins(kChipRoom, 0, 0, 0);
    update();
}

QColor Swatch::shownInk() const {
    return chip_ ? look::kText : look::inkOn(fill_);
}

void Swatch::paintEvent(QPaintEvent* event) {
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QColor fill = look::ground(fill_);
        painter.setBrush(fill);
        if (chip_) {
            constexpr double kSide = 12;
            painter.setPen(fill.darker(130));
            painter.drawRoundedRect(QRectF(2.5, (height() - kSide) / 2.0, kSide, kSide), 2, 2);
        } else {
            painter.setPen(QPen(hasFocus() ? look::kAccent : fill.darker(130), hasFocus() ? 2 : 1));
            painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 4, 4);
        }
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

void LampWidget::setUnlit(bool unlit) {
    if (unlit == unlit_)
        return;
    unlit_ = unlit;
    update();
}

void LampWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (unlit_) {
        painter.scale(width(), height());
        painter.setPen(QPen(look::kDimText, 0.1));
        painter.drawEllipse(QRectF(0.05, 0.05, 0.9, 0.9));
        painter.fillRect(QRectF(0.33, 0.33, 0.34, 0.34), look::kDimText);
        return;
    }
    const QColor light = look::light(colour_);
    const bool off = colour_ == screenColour(kGrey);
    painter.setPen(QPen(off ? light : light.darker(160), 1.5));
    painter.setBrush(off && lookInForce() == Look::Night ? QBrush(Qt::NoBrush) : light);
    painter.drawEllipse(QRectF(rect()).adjusted(1, 1, -1, -1));
    constexpr int kLarge = 40;
    if (width() < kLarge)
        return;
    painter.scale(width(), height());
    painter.setPen(QPen(look::kField, 0.12, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    if (colour_ == screenColour(kGreen)) {
        painter.drawPolyline(QPolygonF{{0.28, 0.53}, {0.44, 0.69}, {0.73, 0.35}});
    } else if (colour_ == screenColour(kRed)) {
        painter.drawLine(QPointF(0.32, 0.32), QPointF(0.68, 0.68));
        painter.drawLine(QPointF(0.68, 0.32), QPointF(0.32, 0.68));
    }
}

Card::Card(QWidget* parent)
    : QWidget(parent) {}

void Card::setFill(const QColor& fill) {
    if (fill == fill_)
        return;
    fill_ = fill;
    update();
}

void Card::standForGroup() {
    group_ = true;
    update();
}

void Card::standAsWell() {
    well_ = true;
    update();
}

void Card::setEdge(Edge edge) {
    if (edge == edge_)
        return;
    edge_ = edge;
    update();
}

void Card::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (edge_ != Edge::None) {
        const bool dashed = edge_ == Edge::Dashed;
        painter.setPen(dashed ? QPen(look::kDimText, 2, Qt::DashLine) : QPen(look::kEdge, 1));
        const qreal inset = dashed ? 1 : 0.5;
        painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), 4, 4);
        return;
    }
    if (well_) {
        painter.setPen(look::kEdge);
        painter.setBrush(look::kField);
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 4, 4);
        return;
    }
    const QColor& own = group_ ? look::kGroup : look::kCard;
    painter.setBrush(fill_.isValid() ? look::ground(fill_) : own);
    if (lookInForce() == Look::Night) { // as dark as the window
        painter.setPen(look::kEdge);
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 4, 4);
        return;
    }
    painter.setPen(Qt::NoPen);
    painter.drawRoundedRect(rect(), 4, 4);
}

} // namespace skyhold
