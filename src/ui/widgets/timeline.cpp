// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/timeline.h"

#include "ui/look/look.h"

#include <QAccessible>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QToolTip>

#include <algorithm>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr std::int64_t kShortestMs = 5LL * 60'000;
constexpr std::int64_t kLongestMs = 31LL * 86'400'000;
constexpr double kDragPixels = 4;

const QString& keysText() {
    static const QString text =
        u"Wheel, + and −: zoom. Drag, Shift+Left and Shift+Right: move. Left and Right: point at a "
        u"moment, with Ctrl in larger steps. Enter or a click on the band: why. 1, 2, 3, 4: an "
        u"hour, tonight, 24 hours, 7 days. End: back to now. Esc: point at nothing."_s;
    return text;
}

} // namespace

Timeline::Timeline(QWidget* parent)
    : QWidget(parent) {
    setObjectName(u"Timeline"_s);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setAccessibleName(u"Timeline of the night"_s);
    setAccessibleDescription(keysText());
    followLook(this, [this] {
        still_ = {};
        update();
    });
}

QSize Timeline::sizeHint() const {
    return {900, 420};
}

QSize Timeline::minimumSizeHint() const {
    return {400, 160};
}

TimelineGrid Timeline::grid() const {
    const QSizeF whole = window()->size();
    const double unit = std::min(whole.width() / 1280, whole.height() / 800);
    return timelineGrid(size(), std::max(unit, 0.5), night_ ? night_->rows.size() : 0);
}

void Timeline::show(std::shared_ptr<const Night> night, const TimelineView& view) {
    night_ = std::move(night);
    view_ = view;
    if (cursor_ && !view_.shown.holds(*cursor_))
        cursor_.reset();
    still_ = {};
    update();
}

void Timeline::setMessage(const QString& message) {
    if (message_ == message)
        return;
    message_ = message;
    setAccessibleDescription(message.isEmpty() ? keysText() : message);
    update();
}

std::int64_t Timeline::lastMs() const {
    return night_ ? night_->record.range.toMs : view_.shown.toMs;
}

void Timeline::paintEvent(QPaintEvent*) {
    const TimelineInk ink = timelineInk();
    QPainter painter(this);
    if (!message_.isEmpty() || !night_) {
        painter.fillRect(rect(), ink.ground);
        painter.setPen(ink.text);
        painter.setFont(pixelFont(grid().text + 3));
        painter.drawText(QRectF(rect()).adjusted(40, 20, -40, -20),
                         Qt::AlignCenter | Qt::TextWordWrap,
                         message_.isEmpty() ? u"The history is being read…"_s : message_);
        return;
    }
    const TimelineGrid places = grid();
    const QSize pixels = (QSizeF(size()) * devicePixelRatioF()).toSize();
    if (still_.size() != pixels) {
        still_ = QPixmap(pixels);
        still_.setDevicePixelRatio(devicePixelRatioF());
        still_.fill(ink.ground);
        QPainter stillPainter(&still_);
        paintTimeline(stillPainter, places, *night_, view_);
    }
    painter.drawPixmap(0, 0, still_);
    if (cursor_)
        paintMoment(painter, places, *night_, view_, *cursor_);
    if (hasFocus()) {
        painter.setPen(QPen(look::kAccent, 1));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }
}

void Timeline::pointAt(std::int64_t atMs) {
    if (!view_.shown.holds(atMs)) {
        const std::int64_t half = view_.shown.lengthMs() / 2;
        request({atMs - half, atMs + half});
    }
    cursor_ = atMs;
    byKeys_ = true;
    announce();
    update();
}

void Timeline::pointAtNothing() {
    cursor_.reset();
    byKeys_ = false;
    update();
}

// What the eye finds in the head line and in the column of values.
void Timeline::announce() {
    if (!cursor_ || !night_)
        return;
    const MomentThen moment = momentAt(*cursor_, night_->band, night_->rows);
    QStringList words{headLine(moment)};
    for (std::size_t i = 0; i < night_->rows.size(); ++i) {
        const TimelineRow& row = night_->rows[i];
        const auto& value = moment.values[i];
        words += row.title + u' ' + (value ? row.text(value->value) + u' ' + row.unit : u"none"_s);
    }
    setAccessibleDescription(words.join(u"; "_s));
    QAccessibleEvent changed(this, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&changed);
}

void Timeline::request(TimeRange shown) {
    const std::int64_t length = std::clamp(shown.lengthMs(), kShortestMs, kLongestMs);
    if (shown.lengthMs() != length)
        shown.fromMs = shown.toMs - length;
    const bool atNow = shown.toMs >= lastMs();
    if (atNow)
        shown = {lastMs() - length, lastMs()};
    view_.shown = shown;
    view_.atNow = atNow;
    still_ = {};
    update();
    if (onRange)
        onRange(shown, atNow);
}

void Timeline::zoom(double factor, std::int64_t aboutMs) {
    const double length = std::clamp(static_cast<double>(view_.shown.lengthMs()) * factor,
                                     double{kShortestMs}, double{kLongestMs});
    const double share = static_cast<double>(aboutMs - view_.shown.fromMs) /
                         static_cast<double>(std::max<std::int64_t>(view_.shown.lengthMs(), 1));
    const std::int64_t from = aboutMs - std::llround(share * length);
    request({from, from + std::llround(length)});
}

void Timeline::panBy(std::int64_t ms) {
    request({view_.shown.fromMs + ms, view_.shown.toMs + ms});
}

void Timeline::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return;
    pressed_ = event->position();
    pressedShown_ = view_.shown;
    dragged_ = false;
}

void Timeline::mouseMoveEvent(QMouseEvent* event) {
    if (!night_ || !message_.isEmpty())
        return;
    const TimelineGrid places = grid();
    if (pressed_) {
        const double by = event->position().x() - pressed_->x();
        if (dragged_ || std::abs(by) >= kDragPixels) {
            dragged_ = true;
            cursor_.reset();
            const auto ms = std::llround(-by * static_cast<double>(pressedShown_.lengthMs()) /
                                         std::max(places.plot.width(), 1.0));
            request({pressedShown_.fromMs + ms, pressedShown_.toMs + ms});
        }
        return;
    }
    const double x = event->position().x();
    const bool within = x >= places.plot.left() && x <= places.plot.right();
    const bool onBand = places.band.contains(event->position());
    setCursor(onBand ? Qt::PointingHandCursor : Qt::ArrowCursor);
    if (within) {
        cursor_ = std::min(places.timeAt(x, view_.shown), lastMs() - 1);
        byKeys_ = false;
    } else if (!byKeys_) {
        cursor_.reset();
    }
    update();
}

void Timeline::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !pressed_)
        return;
    const bool click = !dragged_;
    pressed_.reset();
    const TimelineGrid places = grid();
    if (click && night_ && message_.isEmpty() && places.band.contains(event->position()) && onWhy)
        onWhy(std::min(places.timeAt(event->position().x(), view_.shown), lastMs() - 1));
}

void Timeline::leaveEvent(QEvent*) {
    if (!byKeys_)
        pointAtNothing();
}

void Timeline::focusOutEvent(QFocusEvent* event) {
    if (byKeys_ && event->reason() != Qt::ActiveWindowFocusReason &&
        event->reason() != Qt::PopupFocusReason)
        pointAtNothing();
    QWidget::focusOutEvent(event);
    update();
}

void Timeline::wheelEvent(QWheelEvent* event) {
    event->accept();
    if (!night_ || !message_.isEmpty())
        return;
    const QPoint turn = event->angleDelta();
    const bool sideways = std::abs(turn.x()) > std::abs(turn.y());
    constexpr double kNotch = 120;
    if (sideways || (event->modifiers() & Qt::ShiftModifier) != 0) {
        const double notches = (sideways ? turn.x() : turn.y()) / kNotch;
        panBy(std::llround(-notches * static_cast<double>(view_.shown.lengthMs()) / 10));
        return;
    }
    const TimelineGrid places = grid();
    const double x = std::clamp(event->position().x(), places.plot.left(), places.plot.right());
    zoom(std::pow(0.8, turn.y() / kNotch), places.timeAt(x, view_.shown));
}

void Timeline::moveCursor(int pixels) {
    const TimelineGrid places = grid();
    const double x = cursor_ ? places.xOf(*cursor_, view_.shown) + pixels
                             : places.plot.right() - (pixels < 0 ? 1 : 0);
    const double to = std::clamp(x, places.plot.left(), places.plot.right());
    cursor_ = std::clamp(places.timeAt(to, view_.shown), view_.shown.fromMs, lastMs() - 1);
    byKeys_ = true;
    announce();
    update();
}

void Timeline::keyPressEvent(QKeyEvent* event) {
    if (!night_ || !message_.isEmpty()) {
        QWidget::keyPressEvent(event);
        return;
    }
    const bool shift = (event->modifiers() & Qt::ShiftModifier) != 0;
    const int step = (event->modifiers() & Qt::ControlModifier) != 0 ? 40 : 4;
    const std::int64_t tenth = view_.shown.lengthMs() / 10;
    const std::int64_t about =
        cursor_.value_or(view_.atNow ? view_.shown.toMs : view_.shown.fromMs + 5 * tenth);
    switch (event->key()) {
    case Qt::Key_Left:
        shift ? panBy(-tenth) : moveCursor(-step);
        return;
    case Qt::Key_Right:
        shift ? panBy(tenth) : moveCursor(step);
        return;
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        zoom(0.8, about);
        return;
    case Qt::Key_Minus:
        zoom(1.25, about);
        return;
    case Qt::Key_1:
    case Qt::Key_2:
    case Qt::Key_3:
    case Qt::Key_4:
        if (onSpan)
            onSpan(static_cast<NightSpan>(event->key() - Qt::Key_1));
        return;
    case Qt::Key_End:
        if (onBackToNow)
            onBackToNow();
        return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        if (onWhy)
            onWhy(cursor_.value_or(lastMs() - 1));
        return;
    case Qt::Key_Escape:
        if (cursor_) {
            pointAtNothing();
            return;
        }
        break;
    default:
        break;
    }
    QWidget::keyPressEvent(event);
}

// The keys, at the names of the rows: over the curves a tip would hide them.
bool Timeline::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    const auto* help = static_cast<QHelpEvent*>(event);
    if (help->pos().x() < grid().labelEnd)
        QToolTip::showText(help->globalPos(), u"<p>%1</p>"_s.arg(keysText()), this);
    else
        QToolTip::hideText();
    return true;
}

} // namespace skyhold
