#include "ui/window/verdict_card.h"

#include "platform/text_forms.h"
#include "ui/widgets/bind.h"
#include "ui/widgets/readout.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include <memory>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

// The ground of the verdict: deep enough for white letters, strong enough to be seen from afar.
QColor verdictGround(Verdict verdict) {
    switch (verdict) {
    case Verdict::Unsafe:
    case Verdict::Waiting:
        return QColor(0xa1, 0x12, 0x1b);
    case Verdict::Safe:
        return QColor(0x12, 0x6b, 0x35);
    case Verdict::None:
        break;
    }
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

void showVerdict(const Parts& parts, Verdict verdict, const ConditionControls& conditions) {
    const QString words = conditions.LblStatus.Caption;
    const QColor ground = verdictGround(verdict);
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
    const auto refresh = [parts, stopped, &conditions, &session] {
        parts.lamp->setUnlit(!session.begun());
        if (session.begun())
            showVerdict(parts, session.verdict, conditions);
        else
            showIdle(parts, *stopped);
    };
    const auto ran = std::make_shared<bool>(false);
    follow(card, session.State, [refresh, stopped, ran, &core](SessionState state) {
        if (state == SessionState::Idle && *ran)
            *stopped = u"stopped "_s + formatDate(core.clock.now(), u"dd/mm hh:mm:ss");
        *ran = state == SessionState::Running;
        refresh();
    });
    follow(card, session.verdict, [refresh](Verdict) { refresh(); });

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
