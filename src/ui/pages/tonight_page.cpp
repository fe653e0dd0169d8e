// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/pages/tonight_page.h"

#include "core/monitoring_core.h"
#include "history/json.h"
#include "ui/look/look.h"
#include "ui/pages/page_parts.h"
#include "ui/widgets/bind.h"
#include "ui/widgets/framed_button.h"
#include "ui/widgets/night_log.h"
#include "ui/widgets/why_window.h"

#include <QButtonGroup>
#include <QHBoxLayout>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr std::int64_t kHourMs = 3'600'000;
constexpr std::int64_t kDayMs = 24 * kHourMs;
constexpr int kMostPoints = 2'400; // as many as a wide screen has pixels
constexpr int kWrittenMs = 400;    // until the history surely has a cycle
constexpr int kMovingMs = 120;     // while the user zooms or drags

struct SpanButton {
    const char* name;
    const char16_t* text;
    const char16_t* tip;
};
constexpr std::array<SpanButton, 4> kSpans{
    {{"ButtSpanHour", u"1 h", u"The last hour (1)"},
     {"ButtSpanTonight", u"Tonight", u"From the night's first session on (2)"},
     {"ButtSpanDay", u"24 h", u"The last 24 hours (3)"},
     {"ButtSpanWeek", u"7 d", u"The last 7 days (4)"}}};

// The beginning of a span that ends now; none of tonight, which the history decides.
std::int64_t lengthOf(NightSpan span) {
    return span == NightSpan::Hour ? kHourMs : span == NightSpan::Day ? kDayMs : 7 * kDayMs;
}

// A little more than is shown, so that a drag has something to show at once.
TimeRange withMargins(TimeRange shown) {
    const std::int64_t margin = shown.lengthMs() / 2;
    return {shown.fromMs - margin, shown.toMs + margin};
}

} // namespace

TonightPage::TonightPage(MonitoringCore& core, QWidget* parent)
    : QWidget(parent)
    , core_(core)
    , timeline_(new Timeline(this))
    , log_(new NightLog(this)) {
    setObjectName(u"TonightPage"_s);
    pool_.setMaxThreadCount(1);
    soon_.setSingleShot(true);
    connect(&soon_, &QTimer::timeout, this, &TonightPage::read);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(look::kMargin, look::kGap, look::kMargin, look::kGap);
    row->setSpacing(look::kGap);
    row->addWidget(timeline_, 1);
    row->addWidget(log_);
    makeBar();

    timeline_->onRange = [this](TimeRange shown, bool atNow) {
        span_.reset();
        shown_ = shown;
        atNow_ = atNow;
        showBar();
        readSoon(kMovingMs);
    };
    timeline_->onSpan = [this](NightSpan span) {
        choose(span);
    };
    timeline_->onBackToNow = [this] {
        backToNow_->click();
    };
    timeline_->onWhy = [this](std::int64_t atMs) {
        showWhy(atMs);
    };
    log_->onEntry = [this](const LogEntry& entry) {
        timeline_->pointAt(entry.segment.time.fromMs);
    };
    log_->onFault = [this](const QString& fault) {
        core_.showMessage({fault, MessageStyle::Ok, u"Log"_s});
    };

    SessionControls& session = core_.records.session;
    follow(this, session.CyclesDone, [this](std::int64_t) { addLive(); });
    follow(this, session.verdict, [this](Verdict) { readSoon(kWrittenMs); });
    follow(this, session.State, [this](SessionState) { readSoon(kWrittenMs); });
}

TonightPage::~TonightPage() {
    pool_.waitForDone();
}

void TonightPage::makeBar() {
    bar_ = new QWidget(this);
    bar_->setObjectName(u"SpanBar"_s);
    auto* row = new QHBoxLayout(bar_);
    row->setContentsMargins(0, 0, look::kGap, 0);
    row->setSpacing(6);
    spans_ = new QButtonGroup(this);
    spans_->setExclusive(false); // none is chosen where the user zoomed
    for (std::size_t i = 0; i < kSpans.size(); ++i) {
        auto* button = new FramedButton(QString::fromUtf16(kSpans[i].text), bar_);
        button->setObjectName(QLatin1String(kSpans[i].name));
        button->setToolTip(QString::fromUtf16(kSpans[i].tip));
        button->setCheckable(true);
        spans_->addButton(button, static_cast<int>(i));
        row->addWidget(button);
    }
    connect(spans_, &QButtonGroup::idClicked, this,
            [this](int id) { choose(static_cast<NightSpan>(id)); });
    backToNow_ = new FramedButton(u"Back to now"_s, bar_);
    backToNow_->setObjectName(u"ButtBackToNow"_s);
    backToNow_->setToolTip(u"Shows the same span up to the present (End)"_s);
    row->addWidget(backToNow_);
    connect(backToNow_, &QPushButton::clicked, this, [this] {
        const std::int64_t length = std::max(shown_.lengthMs(), kHourMs / 12);
        atNow_ = true;
        shown_ = {nowMs() - length, nowMs()};
        timeline_->pointAtNothing();
        showNight();
        readSoon(0);
    });
    showBar();
}

std::int64_t TonightPage::nowMs() const {
    return core_.clock.now().toMSecsSinceEpoch();
}

void TonightPage::choose(NightSpan span) {
    span_ = span;
    atNow_ = true;
    timeline_->pointAtNothing();
    showBar();
    readSoon(0);
}

void TonightPage::showBar() {
    for (QAbstractButton* button : spans_->buttons())
        button->setChecked(span_ && spans_->id(button) == static_cast<int>(*span_));
    backToNow_->setEnabled(!atNow_);
}

// Only what is seen is read.
void TonightPage::readSoon(int ms) {
    if (isVisible())
        soon_.start(ms);
}

void TonightPage::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    read();
}

void TonightPage::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    log_->setFixedWidth(static_cast<int>(0.265 * width()));
}

void TonightPage::read() {
    if (!isVisible())
        return;
    if (!core_.history.state().on) {
        fault_ = u"The history is off: this monitor keeps no record of the night."_s;
        showNight();
        return;
    }
    if (reading_) {
        again_ = true;
        return;
    }
    reading_ = true;
    readAtMs_ = nowMs();
    const std::int64_t now = readAtMs_;
    if (atNow_ && !span_)
        shown_ = {now - shown_.lengthMs(), now};
    pool_.start(
        [this, now, span = span_, shown = shown_, running = core_.records.session.running()] {
            Answer answer;
            const QString path = historyPath();
            answer.shown = !span                         ? shown
                           : *span == NightSpan::Tonight ? nightUntil(path, now)
                                                         : TimeRange{now - lengthOf(*span), now};
            const TimeRange range = span ? answer.shown : withMargins(answer.shown);
            NightRecord record = readNight(path, range, now, kMostPoints);
            record.running = running;
            answer.night = std::make_shared<Night>(nightOf(std::move(record)));
            QMetaObject::invokeMethod(this, [this, answer] { take(answer); });
        });
}

void TonightPage::take(const Answer& answer) {
    reading_ = false;
    night_ = answer.night;
    const QString& fault = night_->record.fault;
    fault_ = fault.isEmpty() ? QString() : u"No night to show: %1."_s.arg(fault);
    if (fault.isEmpty() && night_->record.points.empty() && night_->record.periods.empty() &&
        span_ == NightSpan::Tonight)
        fault_ = u"Nothing is recorded yet. A night is drawn from its first session on."_s;
    // The user may have gone on meanwhile.
    if (span_ || shown_.lengthMs() == 0)
        shown_ = answer.shown;
    showNight();
    if (std::exchange(again_, false))
        readSoon(0);
}

// As long as the next read is not due: the older the span, the fewer pixels a cycle has.
void TonightPage::addLive() {
    if (!isVisible())
        return;
    const CycleResult& result = core_.result;
    const std::int64_t now = nowMs();
    constexpr std::int64_t kPixels = 800;
    if (!night_ || !fault_.isEmpty() || now - readAtMs_ >= shown_.lengthMs() / kPixels) {
        readSoon(kWrittenMs);
    }
    if (!night_ || !atNow_ || result.number == 0)
        return;
    // The band never goes on with a verdict that holds no longer.
    const Verdict verdict = core_.records.session.verdict.value();
    const std::vector<VerdictPeriod>& periods = night_->record.periods;
    if (!periods.empty() && periods.back().verdict != verdictName(verdict)) {
        readSoon(kWrittenMs);
        return;
    }
    NightRecord record = night_->record;
    const HistoryPoint point = pointOf(keptCycle(result, verdict));
    if (!record.points.empty() && record.points.back().atMs >= point.atMs)
        return;
    record.points.push_back(point);
    record.range.toMs = std::max(now, point.atMs + 1);
    record.running = core_.records.session.running();
    night_ = std::make_shared<Night>(nightOf(std::move(record)));
    shown_ = span_ == NightSpan::Tonight ? TimeRange{shown_.fromMs, night_->record.range.toMs}
                                         : TimeRange{night_->record.range.toMs - shown_.lengthMs(),
                                                     night_->record.range.toMs};
    showNight();
}

TimelineView TonightPage::viewOf(TimeRange shown) const {
    TimelineView view{
        .shown = shown, .live = core_.records.session.running(), .atNow = atNow_, .beginning = {}};
    const QDateTime from = QDateTime::fromMSecsSinceEpoch(shown.fromMs);
    const bool today = shown.lengthMs() < kDayMs;
    view.beginning = QLocale::c().toString(from, today ? u"HH:mm"_s : u"ddd d MMM HH:mm"_s);
    return view;
}

void TonightPage::showNight() {
    timeline_->setMessage(fault_);
    if (night_) {
        timeline_->show(night_, viewOf(shown_));
        log_->show(fault_.isEmpty() ? logOf(night_->record) : std::vector<LogEntry>());
    }
    showBar();
}

void TonightPage::showWhy(std::int64_t atMs) {
    WhyWindow* window = WhyWindow::over(this);
    window->ask(historyPath(), atMs);
}

} // namespace skyhold
