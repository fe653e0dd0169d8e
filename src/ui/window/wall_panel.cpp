// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window/wall_panel.h"

#include "platform/text_forms.h"
#include "ui/look/look.h"
#include "ui/widgets/bind.h"
#include "ui/widgets/timeline_band.h"
#include "ui/window/banner_look.h"
#include "ui/window/panel_shapes.h"

#include <QKeyEvent>
#include <QPainter>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

// Lengths are of a screen of 1920 by 1080.
constexpr qreal kMargin = 24;
constexpr qreal kGap = 16;
constexpr qreal kHealthHeight = 86;
constexpr qreal kBandHeight = 180;
constexpr int kNightEveryMs = 60'000;
constexpr QSizeF kDesign(1920, 1080);

constexpr std::array<WallTile, 9> kTiles{{{Quantity::Cloud, true},
                                          {Quantity::Rain, true},
                                          {Quantity::Brightness, true},
                                          {Quantity::Temperature, false},
                                          {Quantity::Wind, false},
                                          {Quantity::Gust, false},
                                          {std::nullopt, false},
                                          {Quantity::Dew, false},
                                          {Quantity::Humidity, false}}};

} // namespace

WallPanel::WallPanel(MonitoringCore& core, QWidget* parent)
    : QWidget(parent)
    , core_(core)
    , night_(core, kNightEveryMs, this) {
    setObjectName(u"WallPanel"_s);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    SessionControls& session = core.records.session;
    follow(this, session.CyclesDone, [this](std::int64_t) { update(); });
    connect(&night_, &NightReader::changed, this, [this] { update(); });
    follow(this, session.verdict, [this](Verdict) { update(); });
    follow(this, core.records.display.LblCause.Caption, [this](const QString&) { update(); });
    follow(this, session.State, [this](SessionState state) {
        if (state == SessionState::Starting)
            startedMs_ = core_.clock.MsClock();
        update();
    });
    second_.setInterval(1000);
    connect(&second_, &QTimer::timeout, this, [this] { update(); });
}

void WallPanel::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    second_.start();
    night_.setWanted(true);
}

void WallPanel::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    second_.stop();
    night_.setWanted(false);
}

void WallPanel::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        Q_EMIT left();
    else
        QWidget::keyPressEvent(event);
}

void WallPanel::mouseDoubleClickEvent(QMouseEvent*) {
    Q_EMIT left();
}

void WallPanel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), look::kWindow);
    const qreal scale = std::min(width() / kDesign.width(), height() / kDesign.height());
    painter.scale(scale, scale);
    const QRectF inside = QRectF(0, 0, width() / scale, height() / scale)
                              .adjusted(kMargin, kMargin, -kMargin, -kMargin);
    const bool hasBand = night_.night() && !night_.night()->band.empty();
    const qreal healthBottom = inside.bottom() - (hasBand ? kBandHeight + kGap : 0);
    const qreal below = healthBottom - kHealthHeight - kGap;
    const qreal across = inside.left() + 0.47 * inside.width();
    const qreal middle = inside.top() + 0.46 * (below - inside.top());
    drawVerdict(painter, {inside.topLeft(), QPointF(across, middle)});
    drawWhy(painter, {QPointF(inside.left(), middle + kGap), QPointF(across, below)});
    drawTiles(painter, {QPointF(across + kGap, inside.top()), QPointF(inside.right(), below)});
    drawHealth(painter,
               {QPointF(inside.left(), below + kGap), QPointF(inside.right(), healthBottom)});
    if (hasBand)
        drawBand(painter, {QPointF(inside.left(), healthBottom + kGap), inside.bottomRight()});
}

void WallPanel::drawVerdict(QPainter& painter, const QRectF& area) const {
    const SessionControls& session = core_.records.session;
    const std::int64_t now = core_.clock.MsClock();
    const BannerFacts facts =
        bannerFacts(core_.result, {.session = session.State,
                                   .verdict = session.verdict,
                                   .ms = now,
                                   .utcMs = core_.clock.now().toMSecsSinceEpoch(),
                                   .overdue = core_.TimerRead.overdue(),
                                   .startLimit = session.NBTimeout.Value,
                                   .started = static_cast<double>(now - startedMs_) / 1000});
    const BannerLook shown = bannerLook(facts.kind);
    drawBanner(painter, area, shown);
    const qreal side = 0.52 * area.height();
    const QRectF sign(area.left() + 36, area.top() + 0.13 * area.height(), side, side);
    drawSign(painter, sign, facts.kind, shown, facts.share);
    painter.setPen(shown.ink);
    const bool idle = facts.kind == BannerKind::Idle;
    const QString words = idle                                 ? u"Not monitoring"_s
                          : facts.kind == BannerKind::Starting ? u"Starting"_s
                          : facts.kind == BannerKind::NoVerdict
                              ? u"No verdict"_s
                              : core_.records.conditions.LblStatus.Caption.value();
    wall::drawFitted(painter,
                     QRectF(QPointF(sign.right() + 30, sign.top() - 10),
                            QPointF(area.right() - 24, sign.bottom() + 10)),
                     words, idle ? 100 : 180, true);
    if (facts.kind == BannerKind::NoVerdict)
        return;
    wall::drawFitted(painter,
                     QRectF(QPointF(area.left() + 36, sign.bottom() + 10),
                            QPointF(area.right() - 24, area.bottom() - 30)),
                     facts.line, 56, true);
}

// The words of a session that has ended are of then.
void WallPanel::drawWhy(QPainter& painter, const QRectF& area) const {
    wall::drawCard(painter, area, look::kCard);
    const SessionControls& session = core_.records.session;
    const bool idle = !session.begun();
    QRectF inside = area.adjusted(36, 20, -36, -20);
    for (const WallTile& tile : kTiles) {
        if (!tile.quantity || !session.running() || session.verdict != Verdict::Safe)
            continue;
        const TileFacts facts =
            tileFacts(*tile.quantity, core_.result, session.verdict, core_.forms);
        if (!facts.nearest || !facts.gauge)
            continue;
        constexpr qreal kGauge = 26;
        inside.setBottom(inside.bottom() - 3 * kGauge);
        drawGauge(painter, *facts.gauge,
                  {inside.left(), inside.bottom() + 1.4 * kGauge, inside.width(), kGauge});
    }
    painter.setPen(idle ? look::kDimText : look::kText);
    const QString words = QString(core_.records.display.LblCause.Caption).replace(u"; "_s, u"\n"_s);
    wall::drawFitted(painter, inside, idle && !words.isEmpty() ? u"Last: "_s + words : words, 52,
                     !idle, Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap);
}

QString WallPanel::unitOf(const WallTile& tile) const {
    if (!tile.quantity)
        return u"°"_s;
    const Measure measure = rowOf(*tile.quantity).measure;
    if (const Label* unit = unitLabel(measure, core_.records.units))
        return unit->Caption;
    return measure == Measure::Percent ? u"%"_s : QString();
}

wall::Tile WallPanel::tileOf(const WallTile& shown) const {
    const ReadingDisplay& display = core_.records.display;
    const SessionControls& session = core_.records.session;
    const Observation& observation = core_.result.observation;
    const bool live = session.running();
    const bool judged = live && session.verdict != Verdict::None;
    const auto ink = [live](const Label& label) {
        return live ? look::ink(screenColour(label.ForeColor), look::kCard) : look::kDimText;
    };
    const Label& header =
        shown.quantity ? display.Label0[*shown.quantity] : display.Label0Direction;
    const Label& value = shown.quantity ? display.LVal[*shown.quantity] : display.LValWindDir;
    wall::Tile tile{.header = header.Caption,
                    .unit = value.Caption.value().isEmpty() ? QString() : unitOf(shown),
                    .value = value.Caption,
                    .level = {},
                    .spread = {},
                    .headerInk = ink(header),
                    .valueInk = ink(value),
                    .levelInk = live ? look::kText : look::kDimText,
                    .live = live,
                    .facts = {},
                    .direction = {}};
    tile.lost =
        judged && (shown.ofSensor ? observation.sensor.failed() : !observation.station.usable());
    if (shown.quantity) {
        tile.level = display.LCond[*shown.quantity].Caption;
        tile.levelInk = ink(display.LCond[*shown.quantity]);
        if (judged)
            tile.facts = tileFacts(*shown.quantity, core_.result, session.verdict, core_.forms);
        const std::optional<double> read = observation.values[*shown.quantity];
        if (judged && shown.ofSensor && read)
            tile.facts.gauge = observedGauge(night_.night(), *shown.quantity, *read);
        tile.spread = QString(tile.facts.spread).replace(u"spread"_s, u"Δ"_s);
    } else if (!tile.lost && !tile.value.isEmpty() && observation.station.windDirection) {
        tile.direction = observation.station.windDirection;
        tile.level = core_.records.units.Cardinal[compassPoint(*tile.direction)];
    }
    return tile;
}

void WallPanel::drawTiles(QPainter& painter, const QRectF& area) const {
    const QSizeF size((area.width() - 2 * kGap) / 3, (area.height() - 2 * kGap) / 3);
    for (std::size_t i = 0; i < kTiles.size(); ++i) {
        const auto column = static_cast<int>(i % 3);
        const auto row = static_cast<int>(i / 3);
        wall::drawTile(painter,
                       {{area.left() + column * (size.width() + kGap),
                         area.top() + row * (size.height() + kGap)},
                        size},
                       tileOf(kTiles[i]));
    }
}

void WallPanel::drawHealth(QPainter& painter, const QRectF& area) const {
    wall::drawCard(painter, area, look::kCard);
    const Records& records = core_.records;
    const HealthFacts facts = healthFacts(core_);
    std::vector<wall::Cell> cells;
    // A word that is right is given up.
    const auto addFact = [&](HealthField field, const QString& caption) {
        const HealthFact& fact = facts[static_cast<std::size_t>(field)];
        QString word = fact.word;
        if (word.startsWith(u"ok "_s))
            word = word.section(u' ', 1);
        cells.push_back({caption + u' ', word, {}, fact});
    };
    const bool live = records.session.begun() && records.session.verdict != Verdict::None;
    if (live) {
        addFact(HealthField::Sensor, u"Sensor"_s);
        addFact(HealthField::Station, u"Station"_s);
        addFact(HealthField::Cycle, u"Next"_s);
    } else {
        addFact(HealthField::Cycle, u"Session"_s);
        cells.back().word = records.session.begun() ? u"starting"_s : u"stopped"_s;
    }
    const Label& roof = records.display.LValSwitch;
    if (roof.Visible && !roof.Caption.value().isEmpty())
        cells.push_back(
            {u"Roof "_s,
             roof.Caption,
             live ? look::ink(screenColour(roof.ForeColor), look::kCard) : look::kDimText,
             {},
             roof.Caption.value() == u"Opened"_s});
    addFact(HealthField::Alarms, u"Alarms"_s);
    cells.push_back({{}, formatDate(core_.clock.now(), u"hh:mm:ss")});
    wall::drawCells(painter, area, cells);
}

void WallPanel::drawBand(QPainter& painter, const QRectF& area) const {
    constexpr qreal kAxis = 50;
    constexpr int kLetters = 36;
    constexpr qreal kLeastBetween = 230; // from one time to the next
    wall::drawCard(painter, area, look::kCard);
    TimelineGrid grid;
    grid.unit = 3;
    grid.small = kLetters;
    grid.band = area.adjusted(24, 14, -24, -kAxis);
    grid.plot = grid.band;
    TimelineView view;
    const TimeRange& whole = night_.night()->record.range;
    view.shown = whole;
    paintVerdicts(painter, grid, night_.night()->band, view);
    painter.setFont(pixelFont(kLetters));
    painter.setPen(look::kDimText);
    const qreal now = grid.band.right();
    for (const AxisMark& mark : axisMarks(whole, grid.band.width(), kLeastBetween)) {
        const qreal x = grid.xOf(mark.atMs, whole);
        const qreal half = painter.fontMetrics().horizontalAdvance(mark.text) / 2.0;
        if (x > now - kLeastBetween || x - half < area.left())
            continue;
        painter.fillRect(QRectF(x - 1, grid.band.bottom(), 2, 8), look::kDimText);
        painter.drawText(QRectF(x - 100, grid.band.bottom() + 6, 200, kAxis - 8), Qt::AlignCenter,
                         mark.text);
    }
    painter.setPen(look::kText);
    painter.drawText(QRectF(now - 200, grid.band.bottom() + 6, 200, kAxis - 8),
                     Qt::AlignRight | Qt::AlignVCenter, u"now"_s);
}

} // namespace skyhold
