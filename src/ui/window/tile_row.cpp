// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window/tile_row.h"

#include "ui/look/look.h"
#include "ui/widgets/bind.h"
#include "ui/window/panel_shapes.h"
#include "ui/window/reading_tile.h"

#include <QHBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

// The tiles from left to right, with the number of each one's header.
struct TileOfQuantity {
    Quantity quantity;
    int header;
};
constexpr std::array<TileOfQuantity, kQuantityCount> kTiles{{{Quantity::Cloud, 0},
                                                             {Quantity::Rain, 1},
                                                             {Quantity::Brightness, 7},
                                                             {Quantity::Temperature, 8},
                                                             {Quantity::Wind, 2},
                                                             {Quantity::Gust, 3},
                                                             {Quantity::Dew, 5},
                                                             {Quantity::Humidity, 6}}};
// For what the night has shown of the sensor program's limits.
constexpr int kNightEveryMs = 600'000;

constexpr int kDirectionHeader = 4; // behind the gust's

// What a tile draws below its value, from the history of the graphs. What one would call calm or
// steady does not fill its strip.
struct TrendOfQuantity {
    Quantity quantity;
    double (*value)(const GraphPoint&);
    TrendScale scale;
};
constexpr TrendScale kAnySpeed{.leastSpan = 10, .lowest = 0};
constexpr TrendScale kDegrees{.leastSpan = 4};
constexpr std::array<TrendOfQuantity, 5> kTrends{{
    {Quantity::Temperature, [](const GraphPoint& p) { return p.temperature; }, kDegrees},
    {Quantity::Wind, [](const GraphPoint& p) { return p.wind; }, kAnySpeed},
    {Quantity::Gust, [](const GraphPoint& p) { return p.gust; }, kAnySpeed},
    {Quantity::Dew, [](const GraphPoint& p) { return p.temperature - p.spread; }, kDegrees},
    {Quantity::Humidity,
     [](const GraphPoint& p) { return p.humidity; },
     {.leastSpan = 10, .lowest = 0, .highest = 100}},
}};

} // namespace

TileRow::TileRow(MonitoringCore& core, QWidget* parent)
    : QWidget(parent)
    , core_(core)
    , night_(core, kNightEveryMs, this) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(look::kGap);
    for (const auto& [quantity, header] : kTiles) {
        addQuantity(quantity, header);
        if (quantity == Quantity::Gust)
            addDirection();
    }
    connect(&night_, &NightReader::changed, this, &TileRow::showFacts);
    follow(this, core.records.session.State, [this](SessionState) { readNight(); });
}

void TileRow::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    readNight();
}

void TileRow::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    readNight();
}

void TileRow::readNight() {
    night_.setWanted(isVisible() && core_.records.session.running());
}

TileFacts TileRow::factsOf(const ShownTile& shown) const {
    const CycleResult& result = core_.result;
    const Verdict verdict = core_.records.session.verdict;
    TileFacts facts = tileFacts(*shown.quantity, result, verdict, core_.forms);
    const std::optional<double> read = result.observation.values[*shown.quantity];
    if (shown.ofSensor && read)
        facts.gauge = observedGauge(night_.night(), *shown.quantity, *read);
    return facts;
}

ReadingTile* TileRow::addTile(Label& header, int number, Label& value, const QString& valueName,
                              bool ofSensor, std::optional<Quantity> quantity) {
    auto* tile = new ReadingTile(header, u"Label0%1"_s.arg(number), value, valueName, this);
    layout()->addWidget(tile);
    tiles_.push_back({tile, ofSensor, quantity});
    return tile;
}

void TileRow::addDirection() {
    ReadingDisplay& display = core_.records.display;
    direction_ = addTile(display.Label0Direction, kDirectionHeader, display.LValWindDir,
                         u"LValWindDir"_s, false, {});
    direction_->showUnit(u"°"_s);
}

void TileRow::addQuantity(Quantity quantity, int header) {
    Records& records = core_.records;
    ReadingDisplay& display = records.display;
    const QuantityRow& shown = rowOf(quantity);
    ReadingTile* tile = addTile(display.Label0[quantity], header, display.LVal[quantity],
                                u"LVal"_s + QLatin1String(shown.valueLabel),
                                shown.source == SourceName::Sensor, quantity);
    tile->showCondition(display.LCond[quantity], u"LCond"_s + QLatin1String(shown.conditionLabel));
    if (Label* unit = unitLabel(shown.measure, records.units))
        tile->showUnit(*unit);
    else
        tile->showUnit(shown.measure == Measure::Percent ? u"%"_s : QString());
    for (const TrendOfQuantity& trend : kTrends) {
        if (trend.quantity == quantity)
            trends_.push_back({tile, trend.value, trend.scale});
    }
}

void TileRow::grow(const PanelSize& size) {
    for (const ShownTile& shown : tiles_)
        shown.tile->grow(size);
    setFixedHeight(tiles_.front().tile->sizeHint().height());
}

void TileRow::showFacts() {
    const CycleResult& result = core_.result;
    const SessionControls& session = core_.records.session;
    const bool judged = session.running() && session.verdict != Verdict::None;
    showDirection();
    for (const ShownTile& shown : tiles_) {
        if (shown.quantity)
            shown.tile->showFacts(judged ? factsOf(shown) : TileFacts{});
        if (!session.running())
            continue;
        const QDateTime read = shown.ofSensor ? core_.records.readings.LastReading
                                              : result.observation.station.recordTime;
        const bool lost = judged && (shown.ofSensor ? result.observation.sensor.failed()
                                                    : !result.observation.station.usable());
        shown.tile->setLost(lost, read.isValid() ? formatDate(read, u"hh:mm") : QString());
    }
}

// As long as a session runs: what it showed last stays.
void TileRow::showDirection() {
    if (!core_.records.session.running())
        return;
    const StationObservation& station = core_.result.observation.station;
    const std::optional<double> from =
        station.usable() ? station.windDirection : std::optional<double>();
    direction_->showDirection(from,
                              from ? core_.records.units.Cardinal[compassPoint(*from)] : QString());
}

void TileRow::showLive(bool live) {
    const ReadingDisplay& display = core_.records.display;
    for (const auto& [tile, ofSensor, quantity] : tiles_) {
        const Label& read = ofSensor ? display.Label3Sensor : display.Label3Station;
        tile->setOld(!live, read.Caption.value().section(u' ', 1));
    }
}

// Only when the history has a new point, or has been cleared.
void TileRow::showTrends() {
    const Records& records = core_.records;
    const GraphHistory& history = records.history;
    const std::pair points(history.count(), history.LastElem);
    if (points == shownPoints_)
        return;
    shownPoints_ = points;
    const double step = history.SampleEvery * records.session.RefreshRead.chosenSeconds();
    const double now = daySerial(core_.clock.now());
    for (const TileTrend& shown : trends_)
        shown.tile->showTrend(lastHour(history, shown.value, now, step), shown.scale);
}

} // namespace skyhold
