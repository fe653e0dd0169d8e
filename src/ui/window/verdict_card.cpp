// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window/verdict_card.h"

#include "platform/text_forms.h"
#include "ui/widgets/bind.h"
#include "ui/window/banner_look.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

// Letters in the banner's own ink, which no look shows differently.
class BannerText : public Readout {
  public:
    explicit BannerText(QWidget* parent)
        : Readout(parent) {}

  protected:
    QColor shownInk() const override { return bannerLook(kind).ink; }

  public:
    BannerKind kind = BannerKind::Idle;
};

class VerdictBanner : public QWidget {
  public:
    VerdictBanner(MonitoringCore& core, QWidget* parent);

    void show(SessionState state);
    void showMoment();
    void grow(const PanelSize& size);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    void showFacts(const BannerFacts& facts);
    void placeWords();
    QRectF signRect() const;

    MonitoringCore& core_;
    BannerText* verdict_;
    BannerText* note_;
    BannerFacts facts_;
    QString shownWords_;
    bool ran_ = false;
    QString stopped_; // when the last session was
    std::int64_t startedMs_ = 0;
    PanelSize size_;
};

// Of the banner, full and compact.
struct Measures {
    qreal width, sign, note;
    qreal judged, starting, none; // letters of the verdict
};
constexpr Measures kFull{
    .width = 372, .sign = 68, .note = 16, .judged = 58, .starting = 40, .none = 30};
constexpr Measures kCompact{
    .width = 300, .sign = 44, .note = 13, .judged = 34, .starting = 28, .none = 22};
constexpr qreal kSignLeft = 18;

const Measures& measuresOf(const PanelSize& size) {
    return size.compact ? kCompact : kFull;
}

VerdictBanner::VerdictBanner(MonitoringCore& core, QWidget* parent)
    : QWidget(parent)
    , core_(core)
    , verdict_(new BannerText(this))
    , note_(new BannerText(this)) {
    setObjectName(u"VerdictBanner"_s);
    verdict_->setObjectName(u"LblStatus"_s);
    note_->setObjectName(u"LblVerdictNote"_s);
    auto* words = new QVBoxLayout(this);
    words->setSpacing(0);
    words->addStretch();
    words->addWidget(verdict_);
    words->addWidget(note_);
    words->addStretch();

    SessionControls& session = core.records.session;
    follow(this, session.State, [this](SessionState state) { show(state); });
    follow(this, session.verdict, [this](Verdict) { showMoment(); });
    follow(this, session.CyclesDone, [this](std::int64_t) { showMoment(); });
    follow(this, core.records.display.LblCause.Caption, [this](const QString&) { showMoment(); });
}

void VerdictBanner::grow(const PanelSize& size) {
    size_ = size;
    const Measures& at1 = measuresOf(size);
    setFixedSize(size.length(at1.width), bannerHeight(size));
    const int upright = size.length(3);
    layout()->setContentsMargins(size.length(kSignLeft + at1.sign + 14), upright, size.length(10),
                                 upright);
    note_->setFixedHeight(size.letters(at1.note) * 4 / 3);
    placeWords();
    showMoment();
    update();
}

void VerdictBanner::show(SessionState state) {
    if (state == SessionState::Idle && ran_)
        stopped_ = u"stopped "_s + formatDate(core_.clock.now(), u"dd/mm hh:mm:ss");
    if (state == SessionState::Starting)
        startedMs_ = core_.clock.MsClock();
    ran_ = state == SessionState::Running;
    showMoment();
}

void VerdictBanner::showMoment() {
    const SessionControls& session = core_.records.session;
    const std::int64_t now = core_.clock.MsClock();
    showFacts(bannerFacts(core_.result, {.session = session.State,
                                         .verdict = session.verdict,
                                         .ms = now,
                                         .utcMs = core_.clock.now().toMSecsSinceEpoch(),
                                         .overdue = core_.TimerRead.overdue(),
                                         .startLimit = session.NBTimeout.Value,
                                         .started = static_cast<double>(now - startedMs_) / 1000}));
}

void VerdictBanner::showFacts(const BannerFacts& facts) {
    const QString words = core_.records.conditions.LblStatus.Caption;
    if (facts == facts_ && words == shownWords_ && !verdict_->text().isEmpty())
        return;
    if (facts.kind != facts_.kind)
        update();
    else if (facts.share != facts_.share)
        update(signRect().toAlignedRect());
    facts_ = facts;
    shownWords_ = words;
    placeWords();
}

void VerdictBanner::placeWords() {
    const BannerKind kind = facts_.kind;
    const QString& words = shownWords_;
    if (verdict_->kind != kind) { // it has an ink of its own
        verdict_->update();
        note_->update();
    }
    verdict_->kind = kind;
    note_->kind = kind;
    const bool idle = kind == BannerKind::Idle;
    const bool starting = kind == BannerKind::Starting;
    const bool judged = !idle && !starting && kind != BannerKind::NoVerdict;
    // A verdict without a session would look like a judgement of now.
    const Measures& at1 = measuresOf(size_);
    // Stripes above and below it take some of the room.
    const qreal striped = kind == BannerKind::SourceFailed ? 0.88 : 1;
    const int letters = size_.letters(judged     ? striped * at1.judged
                                      : starting ? at1.starting
                                                 : at1.none);
    verdict_->setPixelSize(letters, true);
    verdict_->setFixedHeight(letters * 6 / 5);
    verdict_->setText(idle ? u"Not monitoring"_s : starting ? u"Starting"_s : words);
    verdict_->setHidden(verdict_->text().isEmpty());
    note_->setPixelSize(size_.letters(at1.note), judged);
    note_->setText(idle ? stopped_ : facts_.line);
    note_->setHidden(note_->text().isEmpty());
}

QRectF VerdictBanner::signRect() const {
    const qreal side = size_.length(measuresOf(size_).sign);
    return {qreal(size_.length(kSignLeft)), (height() - side) / 2, side, side};
}

void VerdictBanner::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const BannerLook look = bannerLook(facts_.kind);
    drawBanner(painter, rect(), look);
    drawSign(painter, signRect(), facts_.kind, look, facts_.share);
}

} // namespace

VerdictView makeVerdictCard(MonitoringCore& core, QWidget* parent) {
    auto* banner = new VerdictBanner(core, parent);
    return {banner, [banner] { banner->showMoment(); },
            [banner](const PanelSize& size) {
                banner->grow(size);
            }};
}

} // namespace skyhold
