// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/alarm_box.h"

#include "conditions/alarms.h"
#include "platform/files.h"
#include "ui/look/icons.h"
#include "ui/look/look.h"
#include "ui/widgets/bind.h"
#include "ui/widgets/open_editor.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr int kHeight = 24;

void drawGround(QPainter& painter, const QRect& rect, const QColor& edge, const QColor& fill) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(edge);
    painter.setBrush(fill);
    painter.drawRoundedRect(QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5), 4, 4);
}

} // namespace

AlarmBox::AlarmBox(CheckBox& record, QWidget* parent)
    : QAbstractButton(parent)
    , record_(record) {
    setCheckable(true);
    setFixedSize(AlarmBox::sizeHint());
    follow(this, record.Value, [this](int value) { setChecked(value == 1); });
    follow(this, record.HasIcons, [this](bool) { update(); });
    follow(this, record.Enabled, [this](bool on) { setEnabled(on); });
    followVisible(this, record.Visible);
    connect(this, &QAbstractButton::clicked, this,
            [this](bool checked) { record_.set(checked ? 1 : 0); });
}

QSize AlarmBox::sizeHint() const {
    return {34, kHeight};
}

void AlarmBox::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const bool sounds = record_.HasIcons;
    QColor edge = look::kEdge;
    QColor fill = look::kField;
    QColor bell = isEnabled() ? look::kDimText : look::kDisabledText;
    if (isChecked()) {
        fill = isEnabled() ? look::kAccent : look::kDisabledText;
        bell = look::kField;
    } else if (!sounds || !isEnabled()) {
        fill = look::kGroup;
    }
    if (hasFocus())
        edge = isChecked() ? look::kText : look::kAccent;
    drawGround(painter, rect(), edge, fill);
    if (sounds)
        drawBell(painter, QRectF(rect()).adjusted(0, 4, 0, -4), bell, isChecked());
}

void AlarmBox::mousePressEvent(QMouseEvent* event) {
    QAbstractButton::mousePressEvent(event);
    event->accept(); // the release belongs to the box, whichever button it is
}

void AlarmBox::mouseReleaseEvent(QMouseEvent* event) {
    QAbstractButton::mouseReleaseEvent(event);
    event->accept();
    if (rect().contains(event->position().toPoint()))
        Q_EMIT mouseReleased(event->button());
}

void AlarmBox::keyPressEvent(QKeyEvent* event) {
    if (asksForMenu(*event))
        Q_EMIT editWanted();
    else
        QAbstractButton::keyPressEvent(event);
}

SoundName::SoundName(CheckBox& record, QWidget* parent)
    : QAbstractButton(parent) {
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    follow(this, record.Tag, [this](const QString& tag) { showSound(tag); });
    follow(this, record.Enabled, [this](bool on) { setEnabled(on); });
    followVisible(this, record.Visible);
}

void SoundName::showSound(const QString& tag) {
    const SoundSpec sound = parseSound(tag);
    repeat_ = sound.repeat;
    setText(nativePath(sound.file).section(u'/', -1).section(u'.', 0, -2));
    const QString hint = u"Choose the sound of this alarm: click, right-click, or press the menu "
                         u"key or Shift+F10"_s;
    setToolTip(tag.isEmpty() ? hint : sound.file + u'\n' + hint);
    update();
}

QSize SoundName::sizeHint() const {
    return {130, kHeight};
}

QSize SoundName::minimumSizeHint() const {
    return {68, kHeight};
}

void SoundName::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QColor hovered = isEnabled() && underMouse() ? look::kButton : look::kGroup;
    drawGround(painter, rect(), hasFocus() ? look::kAccent : look::kEdge,
               isDown() ? look::kField : hovered);
    const QString opens = u"…"_s;
    const QFontMetrics metrics(font());
    const QRect inner = rect().adjusted(7, 0, -6, 0);
    const QRect name = inner.adjusted(0, 0, -metrics.horizontalAdvance(opens) - 4, 0);
    painter.setPen(isEnabled() ? look::kDimText : look::kDisabledText);
    painter.drawText(inner, Qt::AlignRight | Qt::AlignVCenter, opens);
    QString shown = u"None"_s;
    if (!text().isEmpty()) {
        painter.setPen(isEnabled() ? look::kText : look::kDisabledText);
        shown = repeat_ ? u"⟳ "_s + text() : text();
    }
    painter.drawText(name, Qt::AlignLeft | Qt::AlignVCenter,
                     metrics.elidedText(shown, Qt::ElideRight, name.width()));
}

PlayMark::PlayMark(QProperty<bool>& playing, Label& soundFault, QWidget* parent)
    : QWidget(parent) {
    setFixedSize(20, 20);
    const auto show = [this, &playing, &soundFault] {
        playing_ = playing;
        silent_ = !soundFault.Caption.value().isEmpty();
        const QString tip =
            silent_ ? u"This alarm is due but cannot be heard. "_s + soundFault.Caption.value()
                    : u"This alarm sounds"_s;
        setToolTip(playing_ ? tip : QString());
        update();
    };
    follow(this, playing, [show](bool) { show(); });
    follow(this, soundFault.Caption, [show](const QString&) { show(); });
}

void PlayMark::paintEvent(QPaintEvent*) {
    if (!playing_)
        return;
    QPainter painter(this);
    const QColor ink = look::ink(screenColour(kOrange), look::kGroup);
    drawSpeaker(painter, QRectF(rect()).adjusted(2, 2, -2, -2), ink, silent_);
}

} // namespace skyhold
