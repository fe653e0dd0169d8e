#include "ui/verdict_card.h"

#include "platform/text_forms.h"
#include "ui/bind.h"
#include "ui/readout.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include <memory>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

// The ground of the verdict: deep enough for white letters, strong enough to be seen from afar.
QColor verdictGround(Colour lamp) {
    if (lamp == kRed)
        return QColor(0xa1, 0x12, 0x1b);
    if (lamp == kGreen)
        return QColor(0x12, 0x6b, 0x35);
    return {};
}

struct Parts {
    Card* card;
    LampWidget* lamp;
    Readout* verdict;
    Readout* note;
};

// A verdict without a session would look like a judgement of now.
void showIdle(const Parts& parts, const QString& stopped) {
    parts.card->setFill({});
    parts.card->setEdge(Edge::Dashed);
    parts.verdict->setGround({});
    parts.verdict->setInk({});
    parts.verdict->setTone(Tone::Dim);
    parts.verdict->setPixelSize(32, true);
    parts.verdict->setFixedHeight(44);
    parts.verdict->setText(u"Not monitoring"_s);
    parts.verdict->show();
    parts.note->setText(stopped);
    parts.note->setHidden(stopped.isEmpty());
}

void showVerdict(const Parts& parts, const ConditionControls& conditions) {
    const QString words = conditions.LblStatus.Caption;
    const QColor ground = verdictGround(conditions.LEDUnsafe.FillColor);
    parts.card->setFill(ground);
    parts.card->setEdge(Edge::None);
    parts.verdict->setGround(ground);
    parts.verdict->setInk(ground.isValid() ? Qt::white : QColor());
    parts.verdict->setTone(Tone::Text);
    parts.verdict->setPixelSize(68, true);
    parts.verdict->setFixedHeight(88);
    parts.verdict->setText(words);
    parts.verdict->setHidden(words.isEmpty());
    parts.note->setText(words.isEmpty() ? u"No verdict yet"_s : QString());
    parts.note->setHidden(!words.isEmpty());
}

} // namespace

QWidget* makeVerdictCard(MonitoringCore& core, QWidget* parent) {
    auto* card = new Card(parent);
    card->setFixedSize(372, kVerdictHeight);
    const Parts parts{card, new LampWidget(52, card), new Readout(card), new Readout(card)};
    parts.lamp->setObjectName(u"LEDUnsafe"_s);
    parts.verdict->setObjectName(u"LblStatus"_s);
    parts.note->setObjectName(u"LblVerdictNote"_s);
    parts.note->setPixelSize(15);
    parts.note->setTone(Tone::Dim);
    parts.note->setFixedHeight(24);
    bind(parts.lamp, core.records.conditions.LEDUnsafe);

    ConditionControls& conditions = core.records.conditions;
    SessionControls& session = core.records.session;
    const auto stopped = std::make_shared<QString>(); // when the last session was
    const auto refresh = [parts, stopped, &conditions, &session, &core] {
        const bool idle = session.ButtStart.Visible;
        // It runs until everything has been stopped, which the Start button shows before.
        if (idle && session.Running)
            *stopped = u"stopped "_s + formatDate(core.clock.now(), u"dd/mm hh:mm:ss");
        parts.lamp->setUnlit(idle);
        if (idle)
            showIdle(parts, *stopped);
        else
            showVerdict(parts, conditions);
    };
    follow(card, session.ButtStart.Visible, [refresh](bool) { refresh(); });
    follow(card, conditions.LEDUnsafe.FillColor, [refresh](Colour) { refresh(); });
    follow(card, conditions.LblStatus.Caption, [refresh](const QString&) { refresh(); });

    auto* words = new QVBoxLayout;
    words->setSpacing(0);
    words->addStretch();
    words->addWidget(parts.verdict);
    words->addWidget(parts.note);
    words->addStretch();
    auto* layout = new QHBoxLayout(card);
    layout->setContentsMargins(20, 8, 12, 8);
    layout->setSpacing(16);
    layout->addWidget(parts.lamp);
    layout->addLayout(words);
    return card;
}

} // namespace skyhold
