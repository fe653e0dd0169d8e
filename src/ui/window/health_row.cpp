// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window/health_row.h"

#include "ui/look/look.h"
#include "ui/widgets/bind.h"
#include "ui/window/panel_inks.h"
#include "ui/window/panel_shapes.h"

#include <QHBoxLayout>
#include <QPaintEvent>
#include <QPainter>
#include <QVBoxLayout>

#include <numeric>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr int kHeight = 40;
constexpr int kShapeLeft = 8;
constexpr int kShapeSide = 14;
constexpr int kTextLeft = 27;
constexpr int kLetters = 13;
constexpr int kLineLetters = 12;
constexpr int kLeast = PanelSize::kLeastLetters;
constexpr int kLamp = 9;

// Shares of the width, at 1280 the pixels; the last is of the users.
constexpr std::array<int, kHealthFields + 1> kWidths{176, 176, 148, 146, 132, 138, 164, 176};

constexpr std::array<const char16_t*, kHealthFields> kNames{
    u"SensorHealth", u"StationHealth", u"NextCycle",   u"RecordingHealth",
    u"UploadHealth", u"NetworkHealth", u"AlarmsHealth"};

} // namespace

HealthFieldView::HealthFieldView(const QString& name, QWidget* parent)
    : QWidget(parent) {
    setObjectName(name);
    setAttribute(Qt::WA_OpaquePaintEvent); // nothing behind it is painted for an age
    followLook(this, [this] { update(); });
}

void HealthFieldView::show(const HealthFact& fact) {
    if (fact == fact_)
        return;
    // Most often an age has grown.
    HealthFact grown = fact_;
    grown.word = fact.word;
    const bool onlyWord = grown == fact;
    if (fact.help != fact_.help) {
        setToolTip(fact.help);
        setAccessibleDescription(fact.help);
    }
    fact_ = fact;
    const QString said = fact.name + u": "_s + fact.word;
    setAccessibleName(fact.line.isEmpty() ? said : said + u", "_s + fact.line);
    update(onlyWord ? wordsRect() : rect());
}

void HealthFieldView::grow(const PanelSize& size) {
    size_ = size;
    update();
}

QRect HealthFieldView::lineRect() const {
    const int left = size_.length(kTextLeft);
    return {left, height() / 2 + size_.length(1), width() - left - size_.length(4),
            height() / 2 - size_.length(3)};
}

QColor HealthFieldView::ground() const {
    return fact_.sounds() ? panel::alarmGround() : fact_.failed() ? look::kField : look::kCard;
}

QRect HealthFieldView::wordsRect() const {
    const int left = size_.length(kTextLeft);
    return {left, size_.length(3), width() - left - size_.length(3),
            height() / 2 - size_.length(2)};
}

void HealthFieldView::drawFrame(QPainter& painter) const {
    if (!fact_.failed() && !fact_.sounds())
        return;
    painter.setPen(
        QPen(fact_.sounds() ? panel::alarmEdge() : panel::warningEdge(), 2 * size_.unit));
    painter.setBrush(ground());
    const qreal inset = size_.unit;
    painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), 4, 4);
}

// Smaller where the room is short, and with fewer words where that is not enough.
void HealthFieldView::drawWords(QPainter& painter) const {
    const QRect room = wordsRect();
    QFont plain = font();
    QFont bold = plain;
    bold.setBold(true);
    const QString name = fact_.name + u' ';
    int nameWidth = 0;
    const auto fits = [&](int letters, const QString& word) {
        plain.setPixelSize(letters);
        bold.setPixelSize(letters);
        nameWidth = QFontMetrics(plain).horizontalAdvance(name);
        return nameWidth + QFontMetrics(bold).horizontalAdvance(word) <= room.width();
    };
    QString word = fact_.word;
    if (!fits(size_.letters(kLetters), word) && !fits(size_.letters(kLeast), word) &&
        !fact_.brief.isEmpty())
        word = fact_.brief;
    const QColor loud = panel::warning(ground());
    const QFontMetrics metrics(plain);
    const int base = room.center().y() + (metrics.ascent() - metrics.descent() + 1) / 2;
    painter.setFont(plain);
    painter.setPen(fact_.failed() ? loud : look::kDimText);
    painter.drawText(QPoint(room.left(), base), name);
    painter.setFont(bold);
    painter.setPen(fact_.failed() || fact_.warns     ? loud
                   : fact_.shape == HealthShape::Off ? look::kDimText
                                                     : look::kText);
    painter.drawText(QPoint(room.left() + nameWidth, base), word);
}

void HealthFieldView::drawLine(QPainter& painter) const {
    QFont letters = font();
    letters.setPixelSize(size_.letters(kLineLetters));
    painter.setFont(letters);
    painter.setPen(look::kDimText);
    const QRect room = lineRect();
    painter.drawText(room, Qt::AlignLeft | Qt::AlignVCenter,
                     QFontMetrics(letters).elidedText(fact_.line, Qt::ElideRight, room.width()));
}

void HealthFieldView::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    painter.fillRect(event->rect(), look::kCard);
    painter.setRenderHint(QPainter::Antialiasing);
    drawFrame(painter);
    drawWords(painter);
    if (wordsRect().contains(event->rect()))
        return;
    const qreal side = size_.length(kShapeSide);
    drawHealthShape(painter, {qreal(size_.length(kShapeLeft)), (height() - side) / 2, side, side},
                    fact_.shape, fact_.share);
    if (!fact_.line.isEmpty())
        drawLine(painter);
}

HealthRow::HealthRow(MonitoringCore& core, QWidget* parent)
    : Card(parent)
    , core_(core) {
    setObjectName(u"HealthRow"_s);
    for (std::size_t i = 0; i < fields_.size(); ++i)
        fields_[i] = new HealthFieldView(QString::fromUtf16(kNames[i]), this);
    ReadingDisplay& display = core.records.display;
    sensorDate_ = makeDate(HealthField::Sensor, u"Label30"_s, display.Label3Sensor);
    stationDate_ = makeDate(HealthField::Station, u"Label32"_s, display.Label3Station);
    makeReadLamps(display.LEDRead);
    makeUsers(core.records.session);
    grow(size_);

    SessionControls& session = core.records.session;
    follow(this, session.CyclesDone, [this](std::int64_t) { count(); });
    follow(this, session.State, [this](SessionState) { count(); });
    follow(this, core.records.alarms.SoundFault.Caption, [this](const QString&) { count(); });
    follow(this, core.records.network.State, [this](GatewayState) { count(); });
}

Readout* HealthRow::makeDate(HealthField which, const QString& name, Label& record) {
    Readout* date = makeReadout(field(which), name, kLineLetters);
    bind(date, record);
    return date;
}

void HealthRow::makeReadLamps(LampPair& record) {
    HealthFieldView* cycle = field(HealthField::Cycle);
    readLamps_ = {makeLamp(cycle, u"LEDRead0"_s, kLamp), makeLamp(cycle, u"LEDRead1"_s, kLamp)};
    bind(readLamps_[0], readLamps_[1], record);
}

void HealthRow::makeUsers(SessionControls& session) {
    users_ = new QWidget(this);
    Readout* attached = makeReadout(users_, u"LblUsers"_s, kLetters);
    bind(attached, session.LblUsers);
    auto* activity = new QWidget(users_);
    activity->setObjectName(u"FrameCOM"_s);
    userLamps_ = {makeLamp(activity, u"LEDCOM0"_s, kLamp), makeLamp(activity, u"LEDCOM1"_s, kLamp)};
    bind(userLamps_[0], userLamps_[1], session.LEDCOM);
    Readout* calls = makeReadout(activity, u"COMCalls"_s, kLineLetters);
    bind(calls, session.COMCalls);
    calls->setToolTip(u"Calls of the attached programs"_s);
    Readout* period = makeReadout(activity, u"COMPeriod"_s, kLineLetters);
    bind(period, session.COMPeriod);
    period->setToolTip(u"Seconds from one timed call to the next"_s);
    Readout* callsCaption = makeCaption(activity, u"Calls"_s);
    Readout* periodCaption = makeCaption(activity, u"Period"_s);
    userTexts_ = {attached, callsCaption, calls, periodCaption, period};

    auto* line = new QHBoxLayout(activity);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(4);
    for (LampWidget* lamp : userLamps_)
        line->addWidget(lamp);
    line->addWidget(callsCaption);
    line->addWidget(calls, 1);
    line->addWidget(periodCaption);
    line->addWidget(period, 1);
    auto* column = new QVBoxLayout(users_);
    column->setContentsMargins(8, 2, 4, 2);
    column->setSpacing(0);
    column->addStretch();
    column->addWidget(attached);
    column->addWidget(activity);
    column->addStretch();
    bind(activity, session.FrameCOM);
}

void HealthRow::count() {
    const HealthFacts facts = healthFacts(core_);
    for (std::size_t i = 0; i < facts.size(); ++i)
        fields_[i]->show(facts[i]);
    // A date is green only while its source works.
    const auto works = [&facts](HealthField which) {
        return facts[static_cast<std::size_t>(which)].shape == HealthShape::Working;
    };
    sensorDate_->setOld(!works(HealthField::Sensor));
    stationDate_->setOld(!works(HealthField::Station));
}

void HealthRow::grow(const PanelSize& size) {
    size_ = size;
    setFixedHeight(size.length(kHeight));
    for (HealthFieldView* view : fields_)
        view->grow(size);
    for (Readout* date : {sensorDate_, stationDate_})
        date->setPixelSize(size.letters(kLineLetters));
    const int lamp = size.length(kLamp);
    for (LampWidget* each : readLamps_)
        each->setFixedSize(lamp, lamp);
    for (LampWidget* each : userLamps_)
        each->setFixedSize(lamp, lamp);
    for (Readout* text : userTexts_) {
        const bool first = text == userTexts_.front();
        text->setPixelSize(size.letters(first ? kLetters : kLeast));
        text->updateGeometry();
    }
    place();
}

void HealthRow::resizeEvent(QResizeEvent*) {
    place();
}

void HealthRow::place() {
    constexpr int kAll = std::accumulate(kWidths.begin(), kWidths.end(), 0);
    int before = 0;
    for (std::size_t i = 0; i < kWidths.size(); ++i) {
        const int left = width() * before / kAll;
        before += kWidths[i];
        // The row's own edge stays in sight, and the line between two fields.
        const QRect place(left + 2, 1, width() * before / kAll - left - 3, height() - 2);
        if (i < fields_.size())
            fields_[i]->setGeometry(place);
        else
            users_->setGeometry(place);
    }
    sensorDate_->setGeometry(field(HealthField::Sensor)->lineRect());
    stationDate_->setGeometry(field(HealthField::Station)->lineRect());
    const QRect line = field(HealthField::Cycle)->lineRect();
    const int side = readLamps_[0]->width();
    for (int i = 0; i < 2; ++i)
        readLamps_[static_cast<std::size_t>(i)]->move(line.right() - (2 - i) * (side + 2),
                                                      line.center().y() - side / 2);
}

// A line between one field and the next.
void HealthRow::paintEvent(QPaintEvent* event) {
    Card::paintEvent(event);
    QPainter painter(this);
    const int inset = size_.length(8);
    for (std::size_t i = 1; i <= fields_.size(); ++i) {
        const int x = (i < fields_.size() ? fields_[i]->x() : users_->x()) - 2;
        painter.fillRect(x, inset, 1, height() - 2 * inset, look::kEdge);
    }
}

} // namespace skyhold
