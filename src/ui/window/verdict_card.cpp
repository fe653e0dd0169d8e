// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window/verdict_card.h"

#include "platform/text_forms.h"
#include "ui/widgets/bind.h"
#include "ui/widgets/readout.h"
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
    void grow(qreal unit);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    void showFacts(const BannerFacts& facts);

    MonitoringCore& core_;
    BannerText* verdict_;
    BannerText* note_;
    BannerKind kind_ = BannerKind::Idle;
    bool ran_ = false;
    QString stopped_; // when the last session was
    std::int64_t startedMs_ = 0;
    qreal grown_ = 1;
};

constexpr int kSignSide = 76;
constexpr int kSignLeft = 18;

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
    grow(1);

    SessionControls& session = core.records.session;
    follow(this, session.State, [this](SessionState state) { show(state); });
    follow(this, session.verdict, [this](Verdict) { showMoment(); });
    follow(this, session.CyclesDone, [this](std::int64_t) { showMoment(); });
    follow(this, core.records.display.LblCause.Caption, [this](const QString&) { showMoment(); });
}

void VerdictBanner::grow(qreal unit) {
    grown_ = unit;
    const int margin = qRound(12 * unit);
    setFixedSize(qRound(372 * unit), qRound(kVerdictHeight * unit));
    layout()->setContentsMargins(qRound((kSignLeft + kSignSide + 14) * unit), margin, margin,
                                 margin);
    note_->setFixedHeight(qRound(24 * unit));
    showMoment();
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
                                         .overdue = core_.TimerRead.overdue(),
                                         .startLimit = session.NBTimeout.Value,
                                         .started = static_cast<double>(now - startedMs_) / 1000}));
}

void VerdictBanner::showFacts(const BannerFacts& facts) {
    kind_ = facts.kind;
    verdict_->kind = kind_;
    note_->kind = kind_;
    const QString words = core_.records.conditions.LblStatus.Caption;
    const bool idle = kind_ == BannerKind::Idle;
    const bool starting = kind_ == BannerKind::Starting;
    const bool judged = !idle && !starting && kind_ != BannerKind::NoVerdict;
    // A verdict without a session would look like a judgement of now.
    const int size = qRound((judged ? 62 : starting ? 40 : 30) * grown_);
    verdict_->setPixelSize(size, true);
    verdict_->setFixedHeight(size * 5 / 4);
    verdict_->setText(idle ? u"Not monitoring"_s : starting ? u"Starting"_s : words);
    verdict_->setHidden(verdict_->text().isEmpty());
    note_->setPixelSize(qRound((judged ? 17 : 15) * grown_), judged);
    note_->setText(idle ? stopped_ : facts.line);
    note_->setHidden(note_->text().isEmpty());
    update();
}

void VerdictBanner::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const BannerLook look = bannerLook(kind_);
    drawBanner(painter, rect(), look);
    const qreal side = kSignSide * grown_;
    drawSign(painter, QRectF(kSignLeft * grown_, (height() - side) / 2, side, side), kind_, look);
}

} // namespace

VerdictView makeVerdictCard(MonitoringCore& core, QWidget* parent) {
    auto* banner = new VerdictBanner(core, parent);
    return {banner, [banner] { banner->showMoment(); },
            [banner](qreal unit) {
                banner->grow(unit);
            }};
}

} // namespace skyhold
