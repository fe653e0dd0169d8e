// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window/message_card.h"

#include "core/alarms.h"
#include "core/clients.h"
#include "ui/look/look.h"
#include "ui/widgets/bind.h"
#include "ui/widgets/readout_selection.h"
#include "ui/window/nearest_gauge.h"
#include "ui/window/panel_inks.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr int kStopAlarmWidth = 118;
constexpr int kAlarmMessages = 3;

// Letters and heights, full and compact.
struct Measures {
    qreal cause, list; // letters of a cause alone, and of several
    qreal oneLine, twoLines;
    qreal delay, last, alarm, control, takeBack;
};
constexpr Measures kFull{.cause = 22,
                         .list = 19,
                         .oneLine = 30,
                         .twoLines = 53,
                         .delay = 17,
                         .last = 15,
                         .alarm = 14,
                         .control = 22,
                         .takeBack = 28};
constexpr Measures kCompact{.cause = 15,
                            .list = 15,
                            .oneLine = 19,
                            .twoLines = 37,
                            .delay = 14,
                            .last = 13,
                            .alarm = 12,
                            .control = 14,
                            .takeBack = 23};

// Several causes stand below each other.
QString oneALine(const QString& causes) {
    return QString(causes).replace(u"; "_s, u"\n"_s);
}

// How large the letters are, and what gives them their size.
class Growth : public QObject {
  public:
    using QObject::QObject;
    PanelSize size;
    const Measures& at1() const { return size.compact ? kCompact : kFull; }
    std::vector<std::function<void()>> apply;
};

// Why the verdict is what it is, and what is left of the delay.
QWidget* makeCause(MonitoringCore& core, QWidget* card, Growth* growth) {
    Records& records = core.records;
    auto* automatic = new QWidget(card);
    automatic->setObjectName(u"Frame3"_s);
    Readout* cause = makeReadout(automatic, u"LblCause"_s, 22);
    cause->setWrap(true);
    cause->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    allowMouseSelection(cause);
    Readout* last = makeReadout(automatic, u"LblLastVerdict"_s, 14);
    last->setTone(Tone::Dim);
    last->setWrap(true);
    Readout* delay = makeReadout(automatic, u"SafeDelayMsg"_s, 17, true);
    delay->setInk(screenColour(kYellow));
    bind(delay, records.conditions.SafeDelayMsg);
    // In the compact card a second line of causes stands where the delay would.
    const auto inOneLine = [delay, growth] {
        return growth->size.compact && !delay->text().isEmpty();
    };
    const auto showCause = [=, &records] {
        const bool idle = !records.session.begun();
        const QString words = records.display.LblCause.Caption;
        const QString verdict = records.conditions.LblStatus.Caption;
        const bool none = words.isEmpty() && records.session.verdict == Verdict::Safe;
        // Words without a verdict say why a start has failed.
        const bool failed = idle && verdict.isEmpty() && !words.isEmpty();
        cause->setTone(none && !idle ? Tone::Dim : Tone::Text);
        if (idle && !failed)
            cause->setText(u"Start begins a monitoring session."_s);
        else
            cause->setText(none          ? u"No condition counts as unsafe."_s
                           : inOneLine() ? words
                                         : oneALine(words));
        const bool list = cause->text().contains(u'\n');
        const PanelSize& size = growth->size;
        const Measures& at1 = growth->at1();
        cause->setPixelSize(size.letters(list ? at1.list : at1.cause));
        last->setText(verdict.isEmpty() ? QString()
                                        : u"Last verdict: %1. %2"_s.arg(verdict, words));
        last->setHidden(!idle);
        last->setPixelSize(size.letters(at1.last));
        const bool one = (idle && !failed) || inOneLine();
        cause->setFixedHeight(size.length(one ? at1.oneLine : at1.twoLines));
        delay->setHidden(idle || delay->text().isEmpty());
        delay->setPixelSize(size.letters(at1.delay), true);
    };
    growth->apply.push_back(showCause);
    follow(cause, records.display.LblCause.Caption, [=](const QString&) { showCause(); });
    follow(cause, records.session.verdict, [=](Verdict) { showCause(); });
    follow(cause, records.session.State, [=](SessionState) { showCause(); });
    QObject::connect(delay, &Readout::textChanged, cause, showCause);
    auto* automaticLayout = new QVBoxLayout(automatic);
    automaticLayout->setContentsMargins(0, 0, 0, 0);
    automaticLayout->setSpacing(0);
    automaticLayout->addWidget(cause);
    auto* nearest = new NearestGauge(core, automatic);
    automaticLayout->addWidget(nearest);
    growth->apply.emplace_back([=] { nearest->grow(growth->size); });
    auto* delayRow = new QHBoxLayout;
    delayRow->addWidget(delay);
    delayRow->addWidget(last);
    delayRow->addSpacing(kStopAlarmWidth); // the button comes and goes without moving the text
    automaticLayout->addLayout(delayRow);
    bind(automatic, records.session.Frame3);
    return automatic;
}

// While a client decides, the rules have no cause to show.
void addControl(MonitoringCore& core, QWidget* card, QVBoxLayout* lines, Growth* growth) {
    Records& records = core.records;
    Readout* decides = makeReadout(card, {}, 14);
    decides->setTone(Tone::Dim);
    Readout* control = makeReadout(card, u"LblControl"_s, 22, true);
    control->setTone(Tone::Accent);
    bind(control, records.session.LblControl);
    auto* takeBack = new QPushButton(u"Take &back control"_s, card);
    takeBack->setObjectName(u"ButtTakeBack"_s);
    takeBack->setToolTip(
        u"Let the conditions decide again; unsafe until the safe delay has passed"_s);
    QObject::connect(takeBack, &QPushButton::clicked, card, [&core] { TakeBackControl(core); });
    const auto showControl = [=, &records] {
        const bool byClient = !records.session.Frame3.Visible;
        const bool named = !control->text().isEmpty();
        decides->setText(named ? u"Safe or unsafe is decided by"_s
                               : u"Safe or unsafe is decided by a client program"_s);
        decides->setVisible(byClient);
        takeBack->setVisible(byClient);
        const PanelSize& size = growth->size;
        const Measures& at1 = growth->at1();
        control->setPixelSize(size.letters(byClient ? at1.control : at1.last), true);
        control->setVisible(named);
        decides->setPixelSize(size.letters(at1.last));
        takeBack->setFixedHeight(size.length(at1.takeBack));
        QFont letters = takeBack->font();
        letters.setPixelSize(size.letters(13));
        takeBack->setFont(letters);
    };
    growth->apply.emplace_back(showControl);
    follow(control, records.session.LblControl.Caption, [=](const QString&) { showControl(); });
    follow(control, records.session.Frame3.Visible, [=](bool) { showControl(); });
    auto* decidesRow = new QHBoxLayout;
    decidesRow->addWidget(decides, 1);
    decidesRow->addWidget(takeBack);
    auto* beside = new QSpacerItem(0, 0);
    decidesRow->addItem(beside);
    lines->addLayout(decidesRow);
    // The button that ends a noise stands below it, or beside it where there is no room below.
    growth->apply.emplace_back([=] {
        const PanelSize& size = growth->size;
        beside->changeSize(size.compact ? size.length(kStopAlarmWidth) + look::kGap : 0, 0);
        decidesRow->invalidate();
    });
    lines->addWidget(control);
}

// The alarm messages side by side.
QLayout* makeAlarmLine(ReadingDisplay& display, QWidget* card, std::vector<Readout*>& ofSession) {
    auto* alarms = new QHBoxLayout;
    alarms->setSpacing(look::kGap);
    const auto addAlarm = [&](const QString& name, Label& record, int share) {
        Readout* alarm = makeReadout(card, name, 14, true);
        alarm->setInk(screenColour(kOrange));
        bind(alarm, record);
        ofSession.push_back(alarm);
        alarms->addWidget(alarm, share);
    };
    // As much room as their texts need in the smallest window.
    addAlarm(u"WSAlarmMsg"_s, display.WSAlarmMsg, 9);
    addAlarm(u"NBAlarmMsg"_s, display.NBAlarmMsg, 7);
    addAlarm(u"SensorStatus"_s, display.SensorStatus, 4);
    return alarms;
}

// In place of the button that ends the noise.
Readout* makeSilence(AlarmControls& alarms, QWidget* card) {
    Readout* silence = makeReadout(card, u"SoundFault"_s, 13, true);
    silence->setWrap(true);
    followLook(silence, [silence] { silence->setInk(panel::warning(look::kCard)); });
    follow(silence, alarms.SoundFault.Caption, [silence](const QString& fault) {
        silence->setText(fault);
        silence->setToolTip(fault);
        silence->setHidden(fault.isEmpty());
    });
    return silence;
}

// Ends the noise at once, whatever page is open; the alarm itself goes on.
QPushButton* makeStopAlarm(MonitoringCore& core, QWidget* card) {
    auto* button = new QPushButton(card);
    button->setObjectName(u"ButtStopAlarm"_s);
    QFont font = button->font();
    font.setBold(true);
    button->setFont(font);
    followLook(button, [button] {
        QPalette loud;
        loud.setColor(QPalette::Button, look::kLoud);
        loud.setColor(QPalette::ButtonText, look::inkOn(look::kLoud));
        button->setPalette(loud);
    });
    bind(button, core.records.alarms.ButtStopAlarm);
    QObject::connect(button, &QPushButton::clicked, card, [&core] { stopAlarm(core); });
    return button;
}

} // namespace

PanelPart makeMessageCard(MonitoringCore& core, QWidget* parent, std::vector<Readout*>& ofSession) {
    Records& records = core.records;
    auto* card = new Card(parent);
    auto* growth = new Growth(card);
    auto* lines = new QVBoxLayout;
    lines->setSpacing(0);
    lines->addWidget(makeCause(core, card, growth));
    addControl(core, card, lines, growth);
    lines->addStretch();
    QLayout* alarmLine = makeAlarmLine(records.display, card, ofSession);
    lines->addLayout(alarmLine);
    auto* overlay = new QVBoxLayout;
    overlay->addStretch();
    Readout* silence = makeSilence(records.alarms, card);
    QPushButton* stopAlarm = makeStopAlarm(core, card);
    overlay->addWidget(silence);
    overlay->addWidget(stopAlarm);
    auto* belowButton = new QSpacerItem(0, 0, QSizePolicy::Minimum, QSizePolicy::Fixed);
    overlay->addItem(belowButton);
    auto* layout = new QGridLayout(card);
    layout->addLayout(lines, 0, 0);
    layout->addLayout(overlay, 0, 0, Qt::AlignRight);
    const std::vector<Readout*> alarms(ofSession.end() - kAlarmMessages, ofSession.end());
    growth->apply.emplace_back([=] {
        const PanelSize& size = growth->size;
        const Measures& at1 = growth->at1();
        const int edge = size.length(5);
        card->setFixedHeight(bannerHeight(size));
        layout->setContentsMargins(size.length(14), edge, size.length(14), edge);
        for (Readout* alarm : alarms)
            alarm->setPixelSize(size.letters(at1.alarm), true);
        const int width = size.length(kStopAlarmWidth);
        silence->setFixedSize(width, size.length(34));
        silence->setPixelSize(size.letters(12), true);
        stopAlarm->setFixedSize(width, size.length(size.compact ? 28 : 32));
        QFont font = stopAlarm->font();
        font.setPixelSize(size.letters(14));
        stopAlarm->setFont(font);
        belowButton->changeSize(0, alarms.front()->sizeHint().height() + size.length(4),
                                QSizePolicy::Minimum, QSizePolicy::Fixed);
        overlay->invalidate();
    });
    return {card, [growth](const PanelSize& size) {
                growth->size = size;
                for (const auto& apply : growth->apply)
                    apply();
            }};
}

} // namespace skyhold
