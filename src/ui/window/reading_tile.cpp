// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window/reading_tile.h"

#include "ui/look/look.h"
#include "ui/widgets/bind.h"
#include "ui/window/panel_inks.h"

#include <QPaintEvent>
#include <QPainter>

namespace skyhold {

namespace {

constexpr int kHeight = 112;
constexpr int kStripTop = 84;
constexpr int kStripHeight = 21;
constexpr int kFootHeight = 22;

} // namespace

void drawGauge(QPainter& painter, const Gauge& gauge, const QRectF& bar) {
    const QColor limit = panel::limitLine();
    const qreal unit = bar.height() / 6;
    const auto x = [&bar](double at) {
        return bar.left() + at * bar.width();
    };
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.fillRect(bar, look::kField);
    for (const Gauge::Span& span : gauge.unsafe)
        painter.fillRect(
            QRectF(QPointF(x(span.from), bar.top()), QPointF(x(span.to), bar.bottom())),
            QBrush(limit, Qt::BDiagPattern));
    painter.setPen(look::kDimText);
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(bar);
    for (const Gauge::Limit& at : gauge.limits) {
        painter.setPen(QPen(at.unsafe ? limit : look::kDimText, (at.unsafe ? 2 : 1) * unit));
        painter.drawLine(QPointF(x(at.at), bar.top() - 2 * unit),
                         QPointF(x(at.at), bar.bottom() + 2 * unit));
    }
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(look::kText);
    const qreal marker = x(gauge.marker);
    painter.drawPolygon(QPolygonF{{marker - 5 * unit, bar.top() - 6 * unit},
                                  {marker + 5 * unit, bar.top() - 6 * unit},
                                  {marker + 1.5 * unit, bar.top()},
                                  {marker + 1.5 * unit, bar.bottom() + unit},
                                  {marker - 1.5 * unit, bar.bottom() + unit},
                                  {marker - 1.5 * unit, bar.top()}});
    painter.restore();
}

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
    facts_ = facts;
    const bool shown = facts.culprit && !facts.foot.isEmpty();
    showGround();
    setToolTip(shown ? facts.foot : QString());
    place();
    update();
}

void ReadingTile::setLost(bool lost, const QString& at) {
    lost_ = lost;
    at_->setText(lost && !last_.isEmpty() ? QStringLiteral("was %1 at %2").arg(last_, at)
                                          : QString());
    at_->setHidden(!lost);
    update();
}

void ReadingTile::setOld(bool old, const QString& at) {
    setEdge(old ? Edge::Line : Edge::None);
    lost_ = false;
    for (Readout* readout : {header_, value_, unit_, condition_})
        readout->setOld(old);
    at_->setText(value_->text().isEmpty() ? QString() : QStringLiteral("at ") + at);
    at_->setHidden(!old);
    update();
}

void ReadingTile::grow(qreal unit) {
    if (unit == grown_)
        return;
    grown_ = unit;
    updateGeometry();
    place();
    update();
}

QSize ReadingTile::sizeHint() const {
    return {128, grown(kHeight)};
}

QSize ReadingTile::minimumSizeHint() const {
    return {96, grown(kHeight)};
}

QRect ReadingTile::strip() const {
    return {grown(8), grown(kStripTop), width() - 2 * grown(8), grown(kStripHeight)};
}

void ReadingTile::paintEvent(QPaintEvent* event) {
    if (facts_.culprit || lost_) {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        if (facts_.culprit) {
            painter.setBrush(panel::alarmGround());
            painter.setPen(QPen(panel::alarmEdge(), 4));
            painter.drawRoundedRect(QRectF(rect()).adjusted(2, 2, -2, -2), 4, 4);
        } else {
            painter.setBrush(look::kField);
            painter.setPen(QPen(panel::warningEdge(), 1.5, Qt::DashLine));
            painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 4, 4);
        }
    } else {
        Card::paintEvent(event);
    }
    QPainter painter(this);
    if (facts_.nearest) {
        painter.setPen(QPen(look::kText, 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 4, 4);
    }
    if (facts_.culprit) {
        drawFoot(painter);
        return;
    }
    if (lost_)
        drawLost(painter);
    if (at_->isVisible())
        return;
    if (facts_.gauge) {
        const QRectF bar(grown(10), grown(kStripTop + 5), width() - 2 * grown(10), grown(6));
        drawGauge(painter, *facts_.gauge, bar);
        drawLimitNumbers(painter, *facts_.gauge, bar);
        return;
    }
    // A new value above it leaves the strip as it is.
    if (trend_.runs.empty() || !event->rect().intersects(strip()))
        return;
    painter.fillRect(QRect(strip().left(), strip().bottom() + 2, strip().width(), 1), look::kEdge);
    constexpr int kLineMargin = 1;
    drawTrend(painter, QRectF(strip()).adjusted(0, kLineMargin, -kLineMargin, -kLineMargin), trend_,
              scale_, look::kDimText);
}

// What is exceeded and since when, below a culprit.
void ReadingTile::drawFoot(QPainter& painter) const {
    const QRect foot(0, height() - grown(kFootHeight), width(), grown(kFootHeight));
    painter.fillRect(foot, panel::alarmStrip());
    painter.setPen(panel::onAlarmStrip());
    QFont letters = font();
    letters.setBold(true);
    for (int size = grown(13); size >= grown(10); --size) {
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
    letters.setPixelSize(grown(11));
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
        painter.drawText(QRectF(left, bar.bottom() + grown(2), wide + 1, grown(14)),
                         Qt::AlignCenter, limit.text);
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
    painter.drawText(condition_->geometry(), Qt::AlignLeft | Qt::AlignVCenter,
                     QStringLiteral("no new data"));
}

void ReadingTile::resizeEvent(QResizeEvent*) {
    place();
}

// The size of the letters follows the width, so that neighbours look alike.
void ReadingTile::place() {
    constexpr int kNarrow = 120;
    const bool narrow = width() < grown(kNarrow);
    const int inset = grown(narrow ? 8 : 10);
    header_->setPixelSize(grown(narrow ? 12 : 14));
    unit_->setPixelSize(grown(narrow ? 11 : 13));
    value_->setPixelSize(grown(narrow ? 25 : 29), true);
    condition_->setPixelSize(grown(narrow ? 12 : 14), true);
    at_->setPixelSize(grown(12));

    const int inner = width() - 2 * inset;
    const int line = grown(20);
    const int unitWidth = unit_->fontMetrics().horizontalAdvance(unit_->text()) + 2;
    header_->setGeometry(inset, grown(6), inner - unitWidth - 2, line);
    unit_->setGeometry(inset + inner - unitWidth, grown(6), unitWidth, line);
    value_->setGeometry(inset, grown(26), inner, grown(36));
    spread_->setPixelSize(grown(narrow ? 11 : 12));
    spread_->setText(
        narrow ? QString(facts_.spread).replace(QStringLiteral("spread"), QStringLiteral("\u0394"))
               : facts_.spread);
    const int spreadWidth = spread_->text().isEmpty()
                                ? 0
                                : spread_->fontMetrics().horizontalAdvance(spread_->text()) + 2;
    condition_->setGeometry(inset, grown(62), inner - spreadWidth, line);
    spread_->setGeometry(inset + inner - spreadWidth, grown(62), spreadWidth, line);
    at_->setGeometry(inset, grown(kStripTop), inner, grown(kStripHeight));
}

} // namespace skyhold
