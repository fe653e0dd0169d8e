// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window/wall_panel.h"

#include "platform/text_forms.h"
#include "ui/look/look.h"
#include "ui/widgets/bind.h"
#include "ui/widgets/timeline_band.h"
#include "ui/window/age_text.h"
#include "ui/window/banner_look.h"
#include "ui/window/panel_inks.h"
#include "ui/window/reading_tile.h"

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
constexpr int kBandEveryMs = 60'000;
constexpr int kWrittenMs = 400; // until the history surely has a verdict
constexpr QSizeF kDesign(1920, 1080);

struct WallTile {
    std::optional<Quantity> quantity; // none: the wind's direction
    bool ofSensor;
};
constexpr std::array<WallTile, 9> kTiles{{{Quantity::Cloud, true},
                                          {Quantity::Rain, true},
                                          {Quantity::Brightness, true},
                                          {Quantity::Temperature, false},
                                          {Quantity::Wind, false},
                                          {Quantity::Gust, false},
                                          {std::nullopt, false},
                                          {Quantity::Dew, false},
                                          {Quantity::Humidity, false}}};

QFont letters(const QFont& base, qreal size, bool bold) {
    QFont font = base;
    font.setPixelSize(static_cast<int>(size));
    font.setBold(bold);
    return font;
}

// Smaller, down to half its size, where it does not fit.
void drawFitted(QPainter& painter, const QRectF& area, const QString& text, qreal size, bool bold,
                int flags = Qt::AlignLeft | Qt::AlignVCenter) {
    const QFont base = painter.font();
    qreal fitted = size;
    const auto fits = [&] {
        const QRectF needed =
            QFontMetricsF(letters(base, fitted, bold)).boundingRect(area, flags, text);
        return needed.width() <= area.width() && needed.height() <= area.height() + 2;
    };
    while (fitted > size / 2 && !fits())
        fitted -= 2;
    painter.setFont(letters(base, fitted, bold));
    painter.drawText(area, flags, text);
    painter.setFont(base);
}

void drawCard(QPainter& painter, const QRectF& area, const QColor& fill, const QPen& edge) {
    painter.setPen(edge);
    painter.setBrush(fill);
    const qreal inset = edge.style() == Qt::NoPen ? 0 : edge.widthF() / 2;
    painter.drawRoundedRect(area.adjusted(inset, inset, -inset, -inset), 8, 8);
}

struct TileWords {
    QString header, value, level, foot;
    QColor headerInk, valueInk, levelInk;
    bool culprit = false;
    bool nearest = false;
    bool lost = false;
    std::optional<Gauge> gauge = std::nullopt;
};

void drawTile(QPainter& painter, const QRectF& area, const TileWords& words) {
    if (words.culprit)
        drawCard(painter, area, panel::alarmGround(), QPen(panel::alarmEdge(), 7));
    else if (words.lost)
        drawCard(painter, area, look::kField, QPen(panel::warningEdge(), 3, Qt::DashLine));
    else
        drawCard(painter, area, look::kCard,
                 words.nearest ? QPen(look::kText, 4) : QPen(Qt::NoPen));
    const qreal row = area.height() / 12;
    const QRectF inside = area.adjusted(22, 0, -22, 0);
    const auto part = [&inside, row](qreal from, qreal rows) {
        return QRectF(inside.left(), inside.top() + from * row, inside.width(), rows * row);
    };
    painter.setPen(words.headerInk);
    drawFitted(painter, part(0.2, 2.4), words.header, 38, false);
    painter.setPen(words.valueInk);
    drawFitted(painter, part(2.2, 5), words.value, 86, true);
    painter.setPen(words.levelInk);
    drawFitted(painter, part(7, 2.6), words.level, 42, true);
    if (words.gauge && !words.culprit)
        drawGauge(painter, *words.gauge, part(10.4, 0.6));
    if (words.foot.isEmpty())
        return;
    const QRectF foot(area.left(), area.top() + 9.6 * row, area.width(), 2.4 * row);
    if (words.culprit) {
        painter.fillRect(foot, panel::alarmStrip());
        painter.setPen(panel::onAlarmStrip());
        drawFitted(painter, foot.adjusted(8, 0, -8, 0), words.foot, 40, true, Qt::AlignCenter);
    } else { // beside the level
        painter.setPen(look::kDimText);
        drawFitted(painter, part(7, 2.6), words.foot, 36, false, Qt::AlignRight | Qt::AlignVCenter);
    }
}

} // namespace

WallPanel::WallPanel(MonitoringCore& core, QWidget* parent)
    : QWidget(parent)
    , core_(core) {
    setObjectName(u"WallPanel"_s);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    SessionControls& session = core.records.session;
    follow(this, session.CyclesDone, [this](std::int64_t) { update(); });
    pool_.setMaxThreadCount(1);
    bandDue_.setSingleShot(true);
    connect(&bandDue_, &QTimer::timeout, this, &WallPanel::readBand);
    follow(this, session.verdict, [this](Verdict) {
        update();
        if (isVisible())
            bandDue_.start(kWrittenMs);
    });
    follow(this, core.records.display.LblCause.Caption, [this](const QString&) { update(); });
    follow(this, session.State, [this](SessionState state) {
        if (state == SessionState::Starting)
            startedMs_ = core_.clock.MsClock();
        update();
    });
    second_.setInterval(1000);
    connect(&second_, &QTimer::timeout, this, [this] { update(); });
}

WallPanel::~WallPanel() {
    pool_.waitForDone();
}

void WallPanel::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    second_.start();
    readBand();
}

void WallPanel::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    second_.stop();
    bandDue_.stop();
}

void WallPanel::readBand() {
    if (reading_ || !core_.history.state().on)
        return;
    reading_ = true;
    const std::int64_t now = core_.clock.now().toMSecsSinceEpoch();
    pool_.start([this, now, running = core_.records.session.running()] {
        constexpr int kPoints = 1; // the band is made of the verdicts alone
        const QString path = historyPath();
        NightRecord record = readNight(path, nightUntil(path, now), now, kPoints);
        record.running = running;
        const TimeRange night = record.range;
        const auto band = record.fault.isEmpty() ? bandOf(record) : std::vector<BandSegment>();
        QMetaObject::invokeMethod(this, [this, night, band] {
            reading_ = false;
            night_ = night;
            band_ = band;
            update();
            if (isVisible())
                bandDue_.start(kBandEveryMs);
        });
    });
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
    const bool hasBand = !band_.empty();
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
                                   .overdue = core_.TimerRead.overdue(),
                                   .startLimit = session.NBTimeout.Value,
                                   .started = static_cast<double>(now - startedMs_) / 1000});
    const BannerLook shown = bannerLook(facts.kind);
    drawBanner(painter, area, shown);
    const qreal side = 0.48 * area.height();
    const QRectF sign(area.left() + 36, area.top() + 0.13 * area.height(), side, side);
    drawSign(painter, sign, facts.kind, shown);
    painter.setPen(shown.ink);
    const bool idle = facts.kind == BannerKind::Idle;
    const QString words = idle                                 ? u"Not monitoring"_s
                          : facts.kind == BannerKind::Starting ? u"Starting"_s
                          : facts.kind == BannerKind::NoVerdict
                              ? u"No verdict"_s
                              : core_.records.conditions.LblStatus.Caption.value();
    drawFitted(painter,
               QRectF(QPointF(sign.right() + 30, sign.top() - 10),
                      QPointF(area.right() - 24, sign.bottom() + 10)),
               words, 180, true);
    if (facts.kind == BannerKind::NoVerdict)
        return;
    drawFitted(painter,
               QRectF(QPointF(area.left() + 36, sign.bottom() + 10),
                      QPointF(area.right() - 24, area.bottom() - 30)),
               facts.line, 56, true);
}

// The words of a session that has ended are of then.
void WallPanel::drawWhy(QPainter& painter, const QRectF& area) const {
    drawCard(painter, area, look::kCard, QPen(Qt::NoPen));
    const bool idle = !core_.records.session.begun();
    painter.setPen(idle ? look::kDimText : look::kText);
    const QString words = QString(core_.records.display.LblCause.Caption).replace(u"; "_s, u"\n"_s);
    drawFitted(painter, area.adjusted(36, 20, -36, -20),
               idle && !words.isEmpty() ? u"Last: "_s + words : words, 52, !idle,
               Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap);
}

void WallPanel::drawTiles(QPainter& painter, const QRectF& area) const {
    const ReadingDisplay& display = core_.records.display;
    const SessionControls& session = core_.records.session;
    const CycleResult& result = core_.result;
    const bool live = session.running();
    const bool judged = live && session.verdict != Verdict::None;
    const QSizeF size((area.width() - 2 * kGap) / 3, (area.height() - 2 * kGap) / 3);
    for (std::size_t i = 0; i < kTiles.size(); ++i) {
        const WallTile& tile = kTiles[i];
        const Label& header =
            tile.quantity ? display.Label0[*tile.quantity] : display.Label0Direction;
        const Label& value = tile.quantity ? display.LVal[*tile.quantity] : display.LValWindDir;
        const TileFacts facts = tile.quantity && judged ? tileFacts(*tile.quantity, result,
                                                                    session.verdict, core_.forms)
                                                        : TileFacts{};
        const auto ink = [live](const Label& label) {
            return live ? look::ink(screenColour(label.ForeColor), look::kCard) : look::kDimText;
        };
        TileWords words{.header = header.Caption,
                        .value = value.Caption,
                        .level = {},
                        .foot = facts.culprit ? facts.foot
                                              : QString(facts.spread).replace(u"spread"_s, u"Δ"_s),
                        .headerInk = ink(header),
                        .valueInk = ink(value),
                        .levelInk = look::kDimText,
                        .culprit = facts.culprit,
                        .nearest = facts.nearest};
        words.gauge = facts.gauge;
        words.lost = judged && (tile.ofSensor ? result.observation.sensor.failed()
                                              : !result.observation.station.usable());
        if (tile.quantity) {
            words.level = display.LCond[*tile.quantity].Caption;
            words.levelInk = ink(display.LCond[*tile.quantity]);
        }
        if (words.lost) {
            words.value = u"–"_s;
            words.valueInk = look::kDimText;
            words.level = u"no new data"_s;
            words.levelInk = panel::warning(look::kField);
        }
        const auto column = static_cast<int>(i % 3);
        const auto row = static_cast<int>(i / 3);
        drawTile(painter,
                 {{area.left() + column * (size.width() + kGap),
                   area.top() + row * (size.height() + kGap)},
                  size},
                 words);
    }
}

void WallPanel::drawHealth(QPainter& painter, const QRectF& area) const {
    drawCard(painter, area, look::kCard, QPen(Qt::NoPen));
    const Records& records = core_.records;
    const CycleResult& result = core_.result;
    const bool live = records.session.running();
    const bool judged = live && records.session.verdict != Verdict::None;
    const QDateTime now = core_.clock.now();
    const SourceAge station = stationAge(result, core_.clock.MsClock());
    struct Cell {
        QString caption, word;
        bool loud = false;
    };
    std::vector<Cell> cells;
    if (!live) {
        cells.push_back({u"Session"_s, records.session.begun() ? u"starting"_s : u"stopped"_s});
    } else if (judged) {
        const bool sensorFailed = result.observation.sensor.failed();
        const auto age = [&now](const QDateTime& read) {
            return ageText(read, now, 0).remove(u" ago"_s);
        };
        cells.push_back({u"Sensor"_s,
                         sensorFailed ? u"failed"_s : age(records.readings.LastReading),
                         sensorFailed});
        cells.push_back({u"Station"_s, age(records.readings.StationDateTime),
                         station.failed || station.ageing});
        cells.push_back({u"Next"_s, u"%1 s"_s.arg(secondsToCycle(result, core_.clock.MsClock()))});
    }
    if (records.display.LValSwitch.Visible && !records.display.LValSwitch.Caption.value().isEmpty())
        cells.push_back({u"Roof"_s, records.display.LValSwitch.Caption});
    if (!records.readings.AlarmSoundId.isEmpty())
        cells.push_back({u"Alarm"_s, u"sounding"_s, true});
    cells.push_back({{}, formatDate(now, u"hh:mm:ss")});
    const qreal width = area.width() / static_cast<qreal>(cells.size());
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const Cell& cell = cells[i];
        const QRectF place(area.left() + static_cast<qreal>(i) * width + 20, area.top(), width - 40,
                           area.height());
        if (cell.loud)
            drawCard(painter, place.adjusted(-16, 6, 16, -6), look::kField,
                     QPen(panel::warningEdge(), 4));
        const qreal wide = cell.caption.isEmpty()
                               ? 0
                               : QFontMetricsF(letters(painter.font(), 38, false))
                                         .horizontalAdvance(cell.caption) +
                                     14;
        painter.setPen(look::kDimText);
        drawFitted(painter, place, cell.caption, 38, false);
        painter.setPen(cell.loud ? panel::warning(look::kField) : look::kText);
        drawFitted(painter, place.adjusted(wide, 0, 0, 0), cell.word, 38, true);
    }
}

void WallPanel::drawBand(QPainter& painter, const QRectF& area) const {
    constexpr qreal kAxis = 50;
    constexpr int kLetters = 36;
    constexpr qreal kLeastBetween = 230; // from one time to the next
    drawCard(painter, area, look::kCard, QPen(Qt::NoPen));
    TimelineGrid grid;
    grid.unit = 3;
    grid.small = kLetters;
    grid.band = area.adjusted(24, 14, -24, -kAxis);
    grid.plot = grid.band;
    TimelineView view;
    view.shown = night_;
    paintVerdicts(painter, grid, band_, view);
    painter.setFont(pixelFont(kLetters));
    painter.setPen(look::kDimText);
    const qreal now = grid.band.right();
    for (const AxisMark& mark : axisMarks(night_, grid.band.width(), kLeastBetween)) {
        const qreal x = grid.xOf(mark.atMs, night_);
        if (x > now - kLeastBetween)
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
