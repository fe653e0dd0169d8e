// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window/health_marks.h"

#include "ui/look/look.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

#include <cmath>
#include <numbers>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr int kLetters = 13;
constexpr int kMark = 12;
constexpr int kSpace = 6;  // between a mark and its word
constexpr int kApart = 14; // between two of them

HealthFact recording(const MonitoringCore& core) {
    const DataFileControls& file = core.records.dataFile;
    const HistoryState history = core.history.state();
    const Colour lamp = file.LEDRecord.FillColor;
    if (!history.fault.isEmpty())
        return {Health::Failed, u"The history is not written: %1"_s.arg(history.fault)};
    if (lamp == kRed)
        return {Health::Failed, u"Lines of the data file are lost"_s};
    if (lamp == kGreen)
        return {Health::Working, file.LblRecorded.Caption};
    return history.on ? HealthFact{Health::Working, u"The history is written; no data file is"_s}
                      : HealthFact{Health::Off, u"Nothing is recorded"_s};
}

HealthFact upload(const Records& records) {
    // Both texts begin with their times, as "2026-11-16 20:38:05".
    const QString& success = records.upload.LastSuccess.Caption.value();
    const QString& error = records.upload.LastError.Caption.value();
    if (records.session.flgUpload.Value != 1)
        return {Health::Off, u"Nothing is uploaded"_s};
    if (!error.isEmpty() && error > success)
        return {Health::Failed, u"The last upload failed: "_s + error};
    return {Health::Working,
            success.isEmpty() ? u"Nothing was uploaded yet"_s : u"Last upload: "_s + success};
}

HealthFact network(const NetworkControls& network) {
    const QString& text = network.StateText.Caption.value();
    switch (network.State.value()) {
    case GatewayState::Off:
        break;
    case GatewayState::Starting:
        return {Health::Off, text.isEmpty() ? u"The gateway starts"_s : text};
    case GatewayState::Serving:
        return {Health::Working, text};
    case GatewayState::Failed:
        return {Health::Failed, text};
    }
    return {Health::Off, u"Nothing is served to the network"_s};
}

HealthFact alarms(const Records& records) {
    const AlarmControls& alarms = records.alarms;
    if (const QString& fault = alarms.SoundFault.Caption.value(); !fault.isEmpty())
        return {Health::Failed, fault};
    if (!records.readings.AlarmSoundId.isEmpty())
        return {Health::Sounding, u"An alarm sounds"_s};
    if (alarms.SuspendSoundAlarm.Value == 1)
        return {Health::Off, u"Alarms are silenced"_s};
    bool armed =
        alarms.AlarmWS.Value == 1 || alarms.AlarmNB.Value == 1 || alarms.AlarmRoof.Value == 1;
    for (const ThreeChecks& quantity : alarms.Alarm) {
        for (const CheckBox& level : quantity)
            armed = armed || level.Value == 1;
    }
    return armed ? HealthFact{Health::Working, u"Alarms are on"_s}
                 : HealthFact{Health::Off, u"No alarm is on"_s};
}

QPolygonF octagon(const QRectF& box) {
    QPolygonF shape;
    for (int i = 0; i < 8; ++i) {
        const double angle = (i + 0.5) * std::numbers::pi / 4;
        shape << box.center() + QPointF(std::cos(angle), std::sin(angle)) * (box.width() / 2 + 0.5);
    }
    return shape;
}

void drawMark(QPainter& painter, const QRectF& box, Health health) {
    const auto ink = [](QRgb stated) {
        return look::ink(QColor(stated), look::kWindow);
    };
    painter.setPen(Qt::NoPen);
    switch (health) {
    case Health::Off:
        painter.setPen(QPen(look::kDimText, 1.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(box.adjusted(1, 1, -1, -1));
        return;
    case Health::Working:
        painter.setBrush(ink(0x3fd07a));
        painter.drawEllipse(box);
        return;
    case Health::Failed:
        painter.setBrush(ink(0xffb000));
        painter.drawPolygon(
            QPolygonF{{box.center().x(), box.top()}, box.bottomRight(), box.bottomLeft()});
        return;
    case Health::Sounding:
        painter.setBrush(ink(0xff4040));
        painter.drawPolygon(octagon(box));
        return;
    }
}

} // namespace

std::array<HealthFact, kHealthNames.size()> healthFacts(const MonitoringCore& core) {
    return {recording(core), upload(core.records), network(core.records.network),
            alarms(core.records)};
}

HealthMarks::HealthMarks(QWidget* parent)
    : QWidget(parent) {
    setObjectName(u"HealthMarks"_s);
    QFont words = font();
    words.setPixelSize(kLetters);
    setFont(words);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Expanding);
    followLook(this, [this] { update(); });
}

void HealthMarks::show(const std::array<HealthFact, kHealthNames.size()>& facts) {
    if (facts == facts_ && !accessibleName().isEmpty())
        return;
    facts_ = facts;
    QStringList all;
    for (std::size_t i = 0; i < facts_.size(); ++i)
        all += QString::fromUtf16(kHealthNames[i]) + u": "_s + facts_[i].detail;
    setAccessibleName(all.join(u"; "_s));
    updateGeometry();
    update();
}

void HealthMarks::grow(qreal unit) {
    grown_ = unit;
    QFont words = font();
    words.setPixelSize(grown(kLetters));
    setFont(words);
    updateGeometry();
    update();
}

int HealthMarks::widthOf(std::size_t index, bool compact) const {
    const bool worded = !compact || facts_[index].health >= Health::Failed;
    const QString name = QString::fromUtf16(kHealthNames[index]);
    return grown(kMark + kApart) +
           (worded ? grown(kSpace) + fontMetrics().horizontalAdvance(name) : 0);
}

QSize HealthMarks::sizeWith(bool compact) const {
    int width = 0;
    for (std::size_t i = 0; i < facts_.size(); ++i)
        width += widthOf(i, compact);
    return {width, grown(kMark + 4)};
}

QSize HealthMarks::sizeHint() const {
    return sizeWith(false);
}

QSize HealthMarks::minimumSizeHint() const {
    return sizeWith(true);
}

bool HealthMarks::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    const auto* help = static_cast<QHelpEvent*>(event);
    const bool small = compact();
    int left = 0;
    for (std::size_t i = 0; i < facts_.size(); ++i) {
        const int width = widthOf(i, small);
        if (help->x() >= left && help->x() < left + width)
            QToolTip::showText(help->globalPos(),
                               QString::fromUtf16(kHealthNames[i]) + u": "_s + facts_[i].detail,
                               this);
        left += width;
    }
    return true;
}

void HealthMarks::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool small = compact();
    int left = 0;
    for (std::size_t i = 0; i < facts_.size(); ++i) {
        const int width = widthOf(i, small);
        const qreal mark = grown(kMark);
        drawMark(painter, QRectF(left, (height() - mark) / 2, mark, mark), facts_[i].health);
        if (width > grown(kMark + kApart)) {
            const bool loud = facts_[i].health >= Health::Failed;
            painter.setPen(loud ? look::kText : look::kDimText);
            painter.drawText(QRect(left + grown(kMark + kSpace), 0, width, height()),
                             Qt::AlignLeft | Qt::AlignVCenter, QString::fromUtf16(kHealthNames[i]));
        }
        left += width;
    }
}

} // namespace skyhold
