// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window/monitor_panel.h"
#include "ui/window/health_marks.h"

#include "core/clients.h"
#include "core/session.h"
#include "ui/look/look.h"
#include "ui/widgets/bind.h"
#include "ui/window/age_text.h"
#include "ui/window/message_card.h"
#include "ui/window/panel_parts.h"
#include "ui/window/reading_tile.h"
#include "ui/window/verdict_card.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

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

MonitorPanel::MonitorPanel(MonitoringCore& core, QWidget* parent)
    : QWidget(parent) {
    auto* top = new QHBoxLayout;
    top->setSpacing(look::kGap);
    const VerdictView verdict = makeVerdictCard(core, this);
    countVerdict_ = verdict.tick;
    top->addWidget(verdict.card);
    const MessageView message = makeMessageCard(core, this, readouts_);
    grow_ = {verdict.grow, message.grow};
    top->addWidget(message.card, 1);
    top->addWidget(makeSwitchAndSession(core));

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(look::kMargin, look::kMargin, look::kMargin, look::kGap);
    layout->setSpacing(look::kGap);
    layout->addLayout(top);
    layout->addWidget(makeTiles(core.records));
    layout->addWidget(makeSources(core));
    SessionControls& session = core.records.session;
    follow(this, session.CyclesDone, [this, &core, &session](std::int64_t) {
        showTrends(core.records, core.clock.now());
        showLive(core.records, session.begun());
        showFacts(core);
    });
    follow(this, session.verdict, [this, &core](Verdict) { showFacts(core); });
    // A session that starts has nothing to show before its first reading.
    follow(this, session.State, [this, &core](SessionState state) {
        if (state != SessionState::Running)
            showLive(core.records, false);
        showFacts(core);
    });
    // Without a session nothing counts; what is left to follow may be shown a little later.
    const double scale = std::max(core.clock.scale(), 1.0);
    const int secondMs = std::max(static_cast<int>(1000 / scale), 50);
    follow(this, session.State, [this, secondMs](SessionState state) {
        second_.setInterval(state == SessionState::Idle ? 5 * secondMs : secondMs);
    });
    connect(&second_, &QTimer::timeout, this, [this] {
        countVerdict_();
        countAges_();
    });
}

void MonitorPanel::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    countVerdict_();
    countAges_();
    second_.start();
}

void MonitorPanel::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    second_.stop();
}

// After the layouts that are at work: they would not see a height that changes meanwhile.
void MonitorPanel::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    QMetaObject::invokeMethod(
        this, [this] { growWithWindow(); }, Qt::QueuedConnection);
}

// Never smaller than is made for a small window.
void MonitorPanel::growWithWindow() {
    const QSize size = window()->size();
    const qreal unit = std::max(1.0, std::min(size.width() / 1280.0, size.height() / 800.0));
    if (unit == unit_)
        return;
    unit_ = unit;
    for (const auto& grow : grow_)
        grow(unit);
}

void MonitorPanel::showFacts(const MonitoringCore& core) {
    const CycleResult& result = core.result;
    const SessionControls& session = core.records.session;
    const bool judged = session.running() && session.verdict != Verdict::None;
    for (const ShownTile& shown : tiles_) {
        if (shown.quantity)
            shown.tile->showFacts(
                judged ? tileFacts(*shown.quantity, result, session.verdict, core.forms)
                       : TileFacts{});
        if (!session.running())
            continue;
        const QDateTime read = shown.ofSensor ? core.records.readings.LastReading
                                              : result.observation.station.recordTime;
        const bool lost = judged && (shown.ofSensor ? result.observation.sensor.failed()
                                                    : !result.observation.station.usable());
        shown.tile->setLost(lost, read.isValid() ? formatDate(read, u"hh:mm") : QString());
    }
}

// Without a session nothing has a colour of its own, and the last readings have their times.
void MonitorPanel::showLive(const Records& records, bool live) {
    for (Readout* readout : readouts_)
        readout->setOld(!live);
    for (const auto& [tile, ofSensor, quantity] : tiles_) {
        const Label& read = ofSensor ? records.display.Label3Sensor : records.display.Label3Station;
        tile->setOld(!live, read.Caption.value().section(u' ', 1));
    }
}

QWidget* MonitorPanel::makeSwitchAndSession(MonitoringCore& core) {
    SessionControls& session = core.records.session;
    auto* card = new Card(this);
    card->setFixedSize(196, kVerdictHeight);

    Readout* caption = makeCaption(card, u"Roof switch"_s);
    caption->setObjectName(u"LblSwitch"_s);
    followVisible(caption, core.records.display.LblSwitch.Visible);
    Readout* value = makeReadout(card, u"LValSwitch"_s, 22, true);
    bind(value, core.records.display.LValSwitch);
    readouts_.push_back(value);
    // The roof stays as the session left it.
    Readout* left = makeReadout(card, u"LblLeftOpen"_s, 13, true);
    left->setInk(screenColour(kOrange));
    left->setText(u"left open"_s);
    left->reserve(left->text());
    const auto showLeft = [left, &core, &session] {
        const Label& roof = core.records.display.LValSwitch;
        left->setVisible(!session.begun() && roof.Visible && roof.Caption.value() == u"Opened"_s);
    };
    follow(left, session.State, [showLeft](SessionState) { showLeft(); });
    follow(left, core.records.display.LValSwitch.Caption,
           [showLeft](const QString&) { showLeft(); });

    const auto makeButton = [card](const QString& name, const QString& text, Button& record) {
        auto* button = new QPushButton(text, card);
        button->setObjectName(name);
        button->setMinimumHeight(40);
        QFont font = button->font();
        font.setPixelSize(16);
        font.setBold(true);
        button->setFont(font);
        bind(button, record);
        return button;
    };
    QPushButton* start = makeButton(u"ButtStart"_s, u"&Start"_s, session.ButtStart);
    followLook(start, [start] {
        QPalette primary;
        if (lookInForce() != Look::Desktop)
            primary.setColor(QPalette::Button, look::kPrimary);
        start->setPalette(primary);
    });
    QPushButton* stop = makeButton(u"ButtStop"_s, u"S&top"_s, session.ButtStop);
    connect(start, &QPushButton::clicked, card, [&core] { StartSession(core); });
    connect(stop, &QPushButton::clicked, card, [&core] { StopByUser(core); });

    auto* layout = new QVBoxLayout(card);
    layout->setContentsMargins(16, 10, 16, 14);
    layout->setSpacing(2);
    auto* head = new QHBoxLayout;
    head->addWidget(caption);
    head->addStretch();
    head->addWidget(left);
    layout->addLayout(head);
    layout->addWidget(value);
    layout->addStretch();
    // Side by side: when the last client leaves an idle monitor, both are offered.
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(look::kGap);
    buttons->addWidget(start);
    buttons->addWidget(stop);
    layout->addLayout(buttons);
    grow_.emplace_back([card, caption, value, left, start, stop](qreal unit) {
        card->setFixedSize(qRound(196 * unit), qRound(kVerdictHeight * unit));
        caption->setPixelSize(qRound(13 * unit));
        caption->reserve(caption->text());
        value->setPixelSize(qRound(22 * unit), true);
        left->setPixelSize(qRound(13 * unit), true);
        left->reserve(left->text());
        for (QPushButton* button : {start, stop}) {
            button->setMinimumHeight(qRound(40 * unit));
            QFont font = button->font();
            font.setPixelSize(qRound(16 * unit));
            button->setFont(font);
        }
    });
    return card;
}

QWidget* MonitorPanel::makeTiles(Records& records) {
    ReadingDisplay& display = records.display;
    auto* row = new QWidget(this);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(look::kGap);
    const auto addTile = [&](Label& header, int number, Label& value, const QString& valueName,
                             bool sensor, std::optional<Quantity> quantity = {}) {
        auto* tile = new ReadingTile(header, u"Label0%1"_s.arg(number), value, valueName, row);
        layout->addWidget(tile, 1);
        tiles_.push_back({tile, sensor, quantity});
        return tile;
    };
    const auto addDirection = [&] {
        ReadingTile* tile = addTile(display.Label0Direction, kDirectionHeader, display.LValWindDir,
                                    u"LValWindDir"_s, false);
        tile->showUnit(u"°"_s);
        trends_.push_back({tile, [](const GraphPoint& p) { return p.direction; },
                           TrendScale{.lowest = 0, .highest = 360, .circular = true}});
    };
    for (const auto& [quantity, header] : kTiles) {
        const QuantityRow& shown = rowOf(quantity);
        ReadingTile* tile = addTile(display.Label0[quantity], header, display.LVal[quantity],
                                    u"LVal"_s + QLatin1String(shown.valueLabel),
                                    shown.source == SourceName::Sensor, quantity);
        tile->showCondition(display.LCond[quantity],
                            u"LCond"_s + QLatin1String(shown.conditionLabel));
        if (Label* unit = unitLabel(shown.measure, records.units))
            tile->showUnit(*unit);
        else
            tile->showUnit(shown.measure == Measure::Percent ? u"%"_s : QString());
        for (const TrendOfQuantity& trend : kTrends) {
            if (trend.quantity == quantity)
                trends_.push_back({tile, trend.value, trend.scale});
        }
        if (quantity == Quantity::Gust)
            addDirection();
    }
    grow_.emplace_back([this, row](qreal unit) {
        for (const ShownTile& shown : tiles_)
            shown.tile->grow(unit);
        row->setFixedHeight(tiles_.front().tile->sizeHint().height());
    });
    return row;
}

// Only when the history has a new point, or has been cleared.
void MonitorPanel::showTrends(const Records& records, const QDateTime& now) {
    const GraphHistory& history = records.history;
    const std::pair points(history.count(), history.LastElem);
    if (points == shownPoints_)
        return;
    shownPoints_ = points;
    const double step = history.SampleEvery * records.session.RefreshRead.chosenSeconds();
    for (const TileTrend& shown : trends_)
        shown.tile->showTrend(lastHour(history, shown.value, daySerial(now), step), shown.scale);
}

// Each of its texts and lamps from the size that it was made with.
void MonitorPanel::growRow(QWidget* row, HealthMarks* marks) {
    std::vector<std::pair<Readout*, int>> texts;
    for (Readout* text : row->findChildren<Readout*>())
        texts.emplace_back(text, text->font().pixelSize());
    std::vector<std::pair<LampWidget*, int>> lamps;
    for (LampWidget* lamp : row->findChildren<LampWidget*>())
        lamps.emplace_back(lamp, lamp->width());
    const int height = row->height();
    grow_.emplace_back([=](qreal unit) {
        for (const auto& [text, size] : texts)
            text->setPixelSize(qRound(size * unit));
        for (const auto& [lamp, size] : lamps) {
            const int side = qRound(size * unit);
            lamp->setFixedSize(side, side);
        }
        marks->grow(unit);
        row->setFixedHeight(qRound(height * unit));
    });
}

QWidget* MonitorPanel::makeSources(MonitoringCore& core) {
    ReadingDisplay& display = core.records.display;
    SessionControls& session = core.records.session;
    auto* row = new QWidget(this);
    row->setFixedHeight(24);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(4, 0, 4, 0);
    layout->setSpacing(look::kGap);

    const auto addPair = [row](QHBoxLayout* into, const QString& name, LampPair& record) {
        LampWidget* first = makeLamp(row, name + u'0', 14);
        LampWidget* second = makeLamp(row, name + u'1', 14);
        bind(first, second, record);
        into->addWidget(first);
        into->addWidget(second);
    };
    const auto addTime = [&](const QString& caption, const QString& name, Label& record) {
        layout->addWidget(makeCaption(row, caption));
        Readout* time = makeReadout(row, name, 13);
        time->reserve(u"00/00 00:00:00"_s);
        bind(time, record);
        readouts_.push_back(time);
        layout->addWidget(time);
        Readout* age = makeReadout(row, name + u"Age"_s, 13);
        age->setTone(Tone::Dim);
        age->reserve(u"90 min ago"_s);
        layout->addWidget(age);
        return age;
    };
    layout->addWidget(makeCaption(row, u"Reading"_s));
    addPair(layout, u"LEDRead"_s, display.LEDRead);
    layout->addSpacing(look::kGap);
    Readout* sensorAge = addTime(u"Sensor"_s, u"Label30"_s, display.Label3Sensor);
    Readout* stationAge = addTime(u"Station"_s, u"Label32"_s, display.Label3Station);
    layout->addStretch();
    Readout* next = makeReadout(row, u"NextCycle"_s, 13);
    next->setTone(Tone::Dim);
    next->reserve(u"next in 00 s"_s);
    layout->insertWidget(3, next);
    auto* marks = new HealthMarks(row);
    countAges_ = [&core, sensorAge, stationAge, next, marks] {
        marks->show(healthFacts(core));
        const CycleResult& result = core.result;
        const CurrentReadings& readings = core.records.readings;
        const SessionControls& session = core.records.session;
        const std::int64_t nowMs = core.clock.MsClock();
        // At its start a session has no reading yet, and the time of its start stands for it.
        const bool judged = session.running() && session.verdict != Verdict::None;
        const bool sensorKnown =
            session.running() &&
            (!readings.SensorError || readings.LastReading != readings.ReadingStart);
        sensorAge->setInk(readings.SensorError ? screenColour(kOrange) : QColor());
        sensorAge->setText(sensorKnown ? ageText(readings.LastReading, core.clock.now(), 0)
                                       : QString());
        const SourceAge station = skyhold::stationAge(result, nowMs);
        const bool loud = judged && (station.failed || station.ageing);
        stationAge->setInk(loud ? QColor(0xff, 0xb0, 0x00) : QColor());
        stationAge->setText(
            session.running() ? ageText(readings.StationDateTime, core.clock.now(), 0) : QString());
        const std::int64_t left = secondsToCycle(result, nowMs);
        next->setText(!judged || result.intervalSeconds == 0 ? QString()
                      : left > 0                             ? u"next in %1 s"_s.arg(left)
                                                             : u"next due"_s);
    };
    follow(row, session.CyclesDone, [this](std::int64_t) { countAges_(); });
    follow(row, session.State, [this](SessionState) { countAges_(); });

    layout->addWidget(marks);
    auto* activity = new QWidget(row);
    activity->setObjectName(u"FrameCOM"_s);
    auto* activityLayout = new QHBoxLayout(activity);
    activityLayout->setContentsMargins(0, 0, look::kMargin, 0);
    activityLayout->setSpacing(look::kGap);
    addPair(activityLayout, u"LEDCOM"_s, session.LEDCOM);
    activityLayout->addWidget(makeCaption(activity, u"Calls"_s));
    Readout* calls = makeReadout(activity, u"COMCalls"_s, 14);
    calls->reserve(u"0000"_s);
    bind(calls, session.COMCalls);
    activityLayout->addWidget(calls);
    activityLayout->addWidget(makeCaption(activity, u"Period"_s));
    Readout* period = makeReadout(activity, u"COMPeriod"_s, 14);
    period->reserve(u"00000s"_s);
    bind(period, session.COMPeriod);
    activityLayout->addWidget(period);
    bind(activity, session.FrameCOM);
    layout->addWidget(activity);

    Readout* users = makeReadout(row, u"LblUsers"_s, 14);
    users->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    users->reserve(u"Attached Users: 000"_s);
    bind(users, session.LblUsers);
    layout->addWidget(users);
    growRow(row, marks);
    return row;
}

} // namespace skyhold
