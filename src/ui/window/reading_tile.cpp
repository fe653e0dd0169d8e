// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window/reading_tile.h"

#include "ui/look/look.h"
#include "ui/widgets/bind.h"
#include "ui/window/banner_look.h"
#include "ui/window/panel_inks.h"
#include "ui/window/panel_shapes.h"

#include <QPaintEvent>
#include <QPainter>

namespace skyhold {

namespace {

constexpr int kHeight = 114;
constexpr int kCompactHeight = 46;
constexpr int kGaugeTop = 86;
constexpr int kGaugeHeight = 7;
constexpr int kStripTop = 84;
constexpr int kStripHeight = 23;
constexpr int kFootHeight = 21;
constexpr int kCompassSide = 50;
constexpr int kNarrow = 125; // a tile with less has smaller letters

} // namespace

ReadingTile::ReadingTile(Label& header, const QString& headerName, Label& value,
                         const QString& valueName, QWidget* parent)
    : Card(parent)
    , header_(new Readout(this))
    , value_(new Readout(this))
    , unit_(new Readout(this))
    , condition_(new Readout(this))
    , at_(new Readout(this))
    , spread_(new Readout(this)) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    header_->setObjectName(headerName);
    header_->setTone(Tone::Dim);
    value_->setObjectName(valueName);
    unit_->setTone(Tone::Dim);
    at_->setTone(Tone::Dim);
    at_->hide();
    unit_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    bind(header_, header);
    bind(value_, value);
    spread_->setTone(Tone::Dim);
    spread_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    spread_->setObjectName(valueName + QStringLiteral("Spread"));
    at_->setObjectName(valueName + QStringLiteral("At"));
    setObjectName(valueName + QStringLiteral("Tile"));
    follow(unit_, value.Caption, [this](const QString& text) {
        unit_->setHidden(text.isEmpty());
        if (!text.isEmpty())
            last_ = text;
        if (size_.compact) // its width is the level's left end
            place();
    });
    followLook(this, [this] { showGround(); });
}

// A look has a ground of its own for culprits.
void ReadingTile::showGround() {
    const QColor ground = facts_.culprit ? panel::alarmGround() : QColor();
    for (Readout* readout : {header_, value_, unit_, condition_, spread_})
        readout->setGround(ground);
}

void ReadingTile::showCondition(Label& condition, const QString& name) {
    condition_->setObjectName(name);
    bind(condition_, condition);
}

void ReadingTile::showUnit(const QString& unit) {
    unit_->setText(unit);
    place();
}

void ReadingTile::showUnit(Label& unit) {
    follow(unit_, unit.Caption, [this](const QString& text) { showUnit(text); });
}

void ReadingTile::showTrend(Trend trend, const TrendScale& scale) {
    trend_ = std::move(trend);
    scale_ = scale;
    update(strip());
}

void ReadingTile::showFacts(const TileFacts& facts) {
    if (facts == facts_)
        return;
    TileFacts moved = facts_;
    moved.gauge = facts.gauge;
    const bool onlyGauge = moved == facts && facts_.gauge && facts.gauge;
    facts_ = facts;
    if (onlyGauge) {
        const int top = size_.length(kStripTop - 9);
        update(0, top, width(), height() - top);
        return;
    }
    const bool shown = facts.culprit && !facts.foot.isEmpty();
    showGround();
    setToolTip(shown ? facts.foot : QString());
    place();
    update();
}

void ReadingTile::showDirection(std::optional<double> degrees, const QString& point) {
    condition_->setText(point);
    if (degrees == direction_)
        return;
    direction_ = degrees;
    update();
}

void ReadingTile::setLost(bool lost, const QString& at) {
    lostAt_ = at;
    at_->setHidden(!lost || size_.compact);
    if (lost != lost_) {
        lost_ = lost;
        update();
    }
    showLast();
}

void ReadingTile::showLast() {
    if (old_)
        return;
    const bool narrow = width() < size_.length(kNarrow); // it gives up a word
    at_->setText(!lost_ || last_.isEmpty()
                     ? QString()
                     : (narrow ? QStringLiteral("%1 at %2") : QStringLiteral("was %1 at %2"))
                           .arg(last_, lostAt_));
}

void ReadingTile::setOld(bool old, const QString& at) {
    setEdge(old ? Edge::Line : Edge::None);
    for (Readout* readout : {header_, value_, unit_, condition_})
        readout->setOld(old);
    // A compass takes some of its room.
    at_->setText(value_->text().isEmpty() ? QString()
                                          : QStringLiteral("at ") + (direction_ ? at.left(5) : at));
    at_->setHidden(!old || size_.compact);
    if (old == old_)
        return;
    old_ = old;
    lost_ = lost_ && !old;
    update();
}

void ReadingTile::grow(const PanelSize& size) {
    if (size == size_)
        return;
    size_ = size;
    at_->setHidden(!(lost_ || old_) || size_.compact);
    updateGeometry();
    place();
    update();
}

QSize ReadingTile::sizeHint() const {
    return {128, size_.length(size_.compact ? kCompactHeight : kHeight)};
}

QSize ReadingTile::minimumSizeHint() const {
    return {96, sizeHint().height()};
}

QRect ReadingTile::strip() const {
    const int inset = size_.length(8);
    return {inset, size_.length(kStripTop), width() - 2 * inset, size_.length(kStripHeight)};
}

void ReadingTile::drawCard(QPaintEvent* event) {
    if (!facts_.culprit && !lost_) {
        Card::paintEvent(event);
        return;
    }
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (facts_.culprit) {
        painter.setBrush(panel::alarmGround());
        const qreal edge = 2 * size_.unit;
        painter.setPen(QPen(panel::alarmEdge(), 2 * edge));
        painter.drawRoundedRect(QRectF(rect()).adjusted(edge, edge, -edge, -edge), 4, 4);
    } else {
        painter.setBrush(look::kField);
        painter.setPen(QPen(panel::warningEdge(), 1.5 * size_.unit, Qt::DashLine));
        painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 4, 4);
    }
}

void ReadingTile::paintEvent(QPaintEvent* event) {
    drawCard(event);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (facts_.nearest) {
        const qreal edge = size_.unit;
        painter.setPen(QPen(look::kText, 2 * edge));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(edge, edge, -edge, -edge), 4, 4);
    }
    if (lost_ && !facts_.culprit)
        drawLost(painter);
    if (!size_.compact)
        drawBelow(painter, *event);
}

void ReadingTile::drawBelow(QPainter& painter, const QPaintEvent& event) const {
    if (facts_.culprit) {
        drawCulprit(painter);
        return;
    }
    if (direction_ && !lost_) {
        const qreal side = size_.length(kCompassSide);
        const qreal inset = size_.length(8);
        drawCompass(painter, {width() - side - inset, height() - side - inset, side, side},
                    *direction_, old_ ? look::kDimText : look::kText);
    }
    if (lost_ || old_)
        return;
    if (facts_.gauge) {
        const int inset = size_.length(10);
        const QRectF bar(inset, size_.length(kGaugeTop), width() - 2 * inset,
                         size_.length(kGaugeHeight));
        drawGauge(painter, *facts_.gauge, bar);
        drawLimitNumbers(painter, *facts_.gauge, bar);
        return;
    }
    // A new value above it leaves the strip as it is.
    if (trend_.runs.empty() || !event.rect().intersects(strip()))
        return;
    painter.fillRect(QRect(strip().left(), strip().bottom() + 2, strip().width(), 1), look::kEdge);
    constexpr int kLineMargin = 1;
    drawTrend(painter, QRectF(strip()).adjusted(0, kLineMargin, -kLineMargin, -kLineMargin), trend_,
              scale_, look::kDimText);
}

// A cross in an octagon beside the value, the gauge without its numbers, and the foot.
void ReadingTile::drawCulprit(QPainter& painter) const {
    const qreal side = size_.length(20);
    const QRectF right(width() - side - size_.length(10),
                       value_->geometry().center().y() - side / 2, side, side);
    const int value = value_->fontMetrics().horizontalAdvance(value_->text());
    if (value_->x() + value + 4 <= right.left())
        drawSign(
            painter, right, BannerKind::Unsafe,
            {.fill = panel::alarmGround(), .ink = panel::alarmEdge(), .mark = panel::alarmGround()},
            0);
    if (facts_.gauge) {
        const int inset = size_.length(10);
        drawGauge(painter, *facts_.gauge,
                  QRectF(inset, size_.length(82), width() - 2 * inset, size_.length(6)));
    }
    drawFoot(painter);
}

// What is exceeded and since when, below a culprit.
void ReadingTile::drawFoot(QPainter& painter) const {
    const int high = size_.length(kFootHeight);
    const QRect foot(0, height() - high, width(), high);
    painter.fillRect(foot, panel::alarmStrip());
    painter.setPen(panel::onAlarmStrip());
    QFont letters = font();
    letters.setBold(true);
    for (int size = size_.letters(13); size >= size_.letters(10); --size) {
        letters.setPixelSize(size);
        if (QFontMetrics(letters).horizontalAdvance(facts_.foot) <= foot.width() - 6)
            break;
    }
    painter.setFont(letters);
    painter.drawText(foot, Qt::AlignCenter, facts_.foot);
}

// Those that part safe from unsafe; one that would touch the last is left out.
void ReadingTile::drawLimitNumbers(QPainter& painter, const Gauge& gauge, const QRectF& bar) const {
    QFont letters = font();
    letters.setPixelSize(size_.letters(11));
    letters.setBold(true);
    painter.setFont(letters);
    painter.setPen(panel::limitNumber());
    qreal free = 2;
    for (const Gauge::Limit& limit : gauge.limits) {
        if (!limit.unsafe)
            continue;
        const qreal wide = QFontMetrics(letters).horizontalAdvance(limit.text);
        const qreal left = std::clamp(bar.left() + limit.at * bar.width() - wide / 2, 4.0,
                                      std::max(width() - wide - 4, 4.0));
        if (left < free)
            continue;
        free = left + wide + 4;
        painter.drawText(
            QRectF(left, bar.bottom() + size_.length(3), wide + 1, height() - bar.bottom() - 5),
            Qt::AlignHCenter | Qt::AlignTop, limit.text);
    }
}

// In place of a value and its level.
void ReadingTile::drawLost(QPainter& painter) const {
    QFont letters = value_->font();
    painter.setFont(letters);
    painter.setPen(look::kDimText);
    painter.drawText(value_->geometry(), Qt::AlignLeft | Qt::AlignVCenter, QStringLiteral("–"));
    letters = condition_->font();
    painter.setFont(letters);
    painter.setPen(panel::warning(look::kField));
    const QRect place = size_.compact ? value_->geometry() : condition_->geometry();
    const QString words = QStringLiteral("no new data");
    // A narrow tile gives up a word.
    const bool fits = QFontMetrics(letters).horizontalAdvance(words) <= place.width() - 16;
    painter.drawText(place, Qt::AlignVCenter | (size_.compact ? Qt::AlignRight : Qt::AlignLeft),
                     size_.compact && !fits ? QStringLiteral("no data") : words);
}

void ReadingTile::resizeEvent(QResizeEvent*) {
    place();
}

void ReadingTile::place() {
    if (size_.compact)
        placeCompact();
    else
        placeFull();
}

// The size of the letters follows the width, so that neighbours look alike.
void ReadingTile::placeFull() {
    const bool narrow = width() < size_.length(kNarrow);
    const int inset = size_.length(narrow ? 8 : 10);
    header_->setPixelSize(size_.letters(narrow ? 12 : 14));
    unit_->setPixelSize(size_.letters(narrow ? 11 : 12));
    value_->setPixelSize(size_.letters(narrow ? 25 : 28), true);
    condition_->setPixelSize(size_.letters(narrow ? 12 : 14), true);
    condition_->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    at_->setPixelSize(size_.letters(12));

    const int inner = width() - 2 * inset;
    const int line = size_.length(20);
    const int unitWidth = unit_->fontMetrics().horizontalAdvance(unit_->text()) + 2;
    header_->setGeometry(inset, size_.length(4), inner - unitWidth - 2, line);
    unit_->setGeometry(inset + inner - unitWidth, size_.length(4), unitWidth, line);
    value_->setGeometry(inset, size_.length(23), inner, size_.length(34));
    placeSpread({inset, size_.length(57), inner, line}, narrow);
    at_->setGeometry(inset, size_.length(kStripTop), inner, size_.length(kStripHeight));
    showLast();
}

// Beside the level.
void ReadingTile::placeSpread(const QRect& line, bool narrow) {
    spread_->setPixelSize(size_.letters(narrow ? 11 : 12));
    spread_->setText(
        narrow ? QString(facts_.spread).replace(QStringLiteral("spread"), QStringLiteral("\u0394"))
               : facts_.spread);
    const int width = spread_->text().isEmpty()
                          ? 0
                          : spread_->fontMetrics().horizontalAdvance(spread_->text()) + 2;
    condition_->setGeometry(line.adjusted(0, 0, -width, 0));
    spread_->setGeometry(line.adjusted(line.width() - width, 0, 0, 0));
}

// The level stands beside the value.
void ReadingTile::placeCompact() {
    const bool narrow = width() < size_.length(kNarrow);
    const int inset = size_.length(narrow ? 6 : 9);
    const int inner = width() - 2 * inset;
    header_->setPixelSize(size_.letters(12));
    unit_->setPixelSize(size_.letters(11));
    value_->setPixelSize(size_.letters(narrow ? 17 : 20), true);
    condition_->setPixelSize(size_.letters(12), true);
    condition_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    spread_->setText({});

    const int top = size_.length(2);
    const int line = size_.length(18);
    const int unitWidth = unit_->fontMetrics().horizontalAdvance(unit_->text()) + 2;
    header_->setGeometry(inset, top, inner - unitWidth - 2, line);
    unit_->setGeometry(inset + inner - unitWidth, top, unitWidth, line);
    const int below = top + line;
    value_->setGeometry(inset, below, inner, height() - below - top);
    const int taken = value_->fontMetrics().horizontalAdvance(value_->text()) + 6;
    condition_->setGeometry(inset + taken, below, std::max(inner - taken, 0),
                            height() - below - top);
}

} // namespace skyhold
