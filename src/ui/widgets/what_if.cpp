// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/what_if.h"

#include "conditions/rules_of.h"
#include "core/monitoring_core.h"
#include "history/reader.h"
#include "platform/text_forms.h"
#include "ui/dialogs/dialog_parts.h"
#include "ui/look/look.h"
#include "ui/look/window_unit.h"
#include "ui/widgets/grow_page.h"
#include "ui/widgets/timeline_band.h"

#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QProgressBar>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr std::int64_t kDayMs = 86'400'000;
constexpr std::int64_t kWeekMs = 7 * kDayMs;
constexpr int kLookMs = 300;

KeptUnits unitsOf(const UnitControls& units) {
    return {units.UnitsTemp.Index == 1 ? 'F' : 'C',
            "KMmk"[std::clamp(units.UnitsSpeed.Index.value(), 0, 3)]};
}

// The times that somebody looked, as a source is read.
class Watched {
  public:
    explicit Watched(TimeRange day)
        : day_(day) {}

    void step(const ReplayStep& step) {
        const std::int64_t until = step.utcMs + 1'000LL * step.intervalSeconds;
        if (until <= day_.fromMs)
            return;
        const bool goesOn = !times_.empty() && step.utcMs - lastMs_ <= overdueMs(interval_);
        if (!goesOn)
            times_.push_back({std::max(step.utcMs, day_.fromMs), until});
        times_.back().toMs = std::min(until, day_.toMs);
        lastMs_ = step.utcMs;
        interval_ = step.intervalSeconds;
    }
    const std::vector<TimeRange>& times() const { return times_; }

  private:
    TimeRange day_;
    std::vector<TimeRange> times_;
    std::int64_t lastMs_ = 0;
    int interval_ = 0;
};

BandSegment segment(TimeRange time, BandState state) {
    return {.time = time, .state = state, .lasts = false, .source = {}, .causes = {}};
}

// What was watched and is not unsafe. The band has its unsafe times by time, behind the whole day.
void addSafe(std::vector<BandSegment>& band, const std::vector<TimeRange>& watched) {
    std::vector<BandSegment> safe;
    for (TimeRange left : watched) {
        for (std::size_t i = 1; i < band.size(); ++i) {
            const TimeRange& unsafe = band[i].time;
            if (unsafe.toMs <= left.fromMs || unsafe.fromMs >= left.toMs)
                continue;
            if (unsafe.fromMs > left.fromMs)
                safe.push_back(segment({left.fromMs, unsafe.fromMs}, BandState::Safe));
            left.fromMs = unsafe.toMs;
        }
        if (left.lengthMs() > 0)
            safe.push_back(segment(left, BandState::Safe));
    }
    band.insert(band.end(), safe.begin(), safe.end());
}

RulesResult resultOf(const ReplayOutcome& outcome, TimeRange day,
                     const std::vector<TimeRange>& watched) {
    RulesResult result;
    result.week = {outcome.closures, outcome.unsafeMs};
    result.band.push_back(segment(day, BandState::NotMonitored));
    for (const ReplayPeriod& period : outcome.periods) {
        const TimeRange time{std::max(period.fromUtcMs, day.fromMs),
                             std::min(period.toUtcMs, day.toMs)};
        if (time.lengthMs() <= 0)
            continue;
        result.day.unsafeMs += time.lengthMs();
        if (period.closure && period.fromUtcMs >= day.fromMs)
            ++result.day.closures;
        const bool source = !period.cause.delay && period.cause.kind == CauseKind::Source;
        result.band.push_back(segment(time, source ? BandState::SourceFailed : BandState::Unsafe));
    }
    addSafe(result.band, watched);
    return result;
}

WhatIfResult judgeWeek(std::int64_t nowMs, const Rules& inForce, const Rules& edited,
                       KeptUnits units, const Progress& progress) {
    WhatIfResult result;
    result.day = {nowMs - kDayMs, nowMs};
    result.differs = inForce != edited;
    const ReplaySource source = fromHistory(historyPath(), nowMs - kWeekMs, nowMs, units);
    result.fault = source.fault;
    if (!result.fault.isEmpty())
        return result;
    Watched watched(result.day);
    ReplaySource noted = source;
    noted.each = [&](const TakeStep& take) {
        return source.each([&](const ReplayStep& step) {
            watched.step(step);
            return take(step);
        });
    };
    const Comparison comparison = compareRules(noted, inForce, edited, progress);
    result.fault = comparison.fault;
    result.inForce = resultOf(comparison.inForce, result.day, watched.times());
    result.edited = resultOf(comparison.tried, result.day, watched.times());
    return result;
}

} // namespace

// The verdicts of the last 24 hours by both sets of rules, above one time axis.
class WhatIfBands : public QWidget {
  public:
    explicit WhatIfBands(QWidget* parent)
        : QWidget(parent) {
        growsByItself(this);
        followLook(this, [this] { update(); });
    }

    void show(const WhatIfResult& result) {
        result_ = result;
        fit();
        update();
    }

  protected:
    void changeEvent(QEvent* event) override {
        QWidget::changeEvent(event);
        if (event->type() == QEvent::FontChange)
            fit();
    }
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.scale(unit(), unit());
        const QSizeF room = QSizeF(size()) / unit();
        TimelineGrid grid;
        grid.plot = {kCaption, 0, room.width() - kCaption, room.height()};
        const TimelineView view{
            .shown = result_.day, .live = false, .atNow = true, .beginning = {}};
        const auto paint = [&](int row, const QString& caption, const RulesResult& by) {
            grid.band = {kCaption, row * (kBand + kBetween), grid.plot.width(), kBand};
            painter.setFont(pixelFont(12, row == 1));
            painter.setPen(row == 1 ? look::kText : look::kDimText);
            painter.drawText(QRectF(0, grid.band.top(), kCaption - 6, kBand),
                             Qt::AlignLeft | Qt::AlignVCenter, caption);
            paintVerdicts(painter, grid, by.band, view);
        };
        paint(0, u"As set"_s, result_.inForce);
        if (result_.differs)
            paint(1, u"Edited"_s, result_.edited);
        painter.setFont(pixelFont(11));
        painter.setPen(look::kDimText);
        constexpr double kRoom = 42;
        for (const AxisMark& mark : axisMarks(result_.day, grid.plot.width(), kRoom)) {
            const double x = grid.xOf(mark.atMs, result_.day);
            const QRectF place(x - kRoom / 2, room.height() - kAxis, kRoom, kAxis);
            if (place.left() >= grid.plot.left() && place.right() <= room.width())
                painter.drawText(place, Qt::AlignCenter, mark.text);
        }
    }

  private:
    double unit() const { return std::max(windowUnit(*this), 1.0); }
    void fit() {
        setFixedHeight(qRound(((result_.differs ? 2 : 1) * (kBand + kBetween) + kAxis) * unit()));
    }

    static constexpr double kCaption = 52;
    static constexpr double kBand = 22;
    static constexpr double kBetween = 6;
    static constexpr double kAxis = 16;

    WhatIfResult result_;
};

WhatIf::WhatIf(MonitoringCore& core, QWidget* parent)
    : QWidget(parent)
    , core_(core)
    , before_(rulesOf(core.records.conditions))
    , seen_(before_)
    , judged_(before_)
    , bands_(new WhatIfBands(this))
    , table_(new QWidget(this))
    , grid_(new QGridLayout(table_))
    , progress_(new QProgressBar(this))
    , note_(makeDimmed(u"The recorded week is being read…"_s, this)) {
    setObjectName(u"WhatIf"_s);
    pool_.setMaxThreadCount(1);
    grid_->setContentsMargins(0, 0, 0, 0);
    grid_->setHorizontalSpacing(look::kMargin);
    grid_->setVerticalSpacing(3);
    grid_->setColumnStretch(0, 1);
    for (int column = 1; column <= 2; ++column) {
        auto* head = makeDimmed(column == 1 ? u"as set"_s : u"edited"_s, table_);
        head->setObjectName(u"WhatIfHead%1"_s.arg(column - 1));
        grid_->addWidget(head, 0, column, Qt::AlignRight);
    }
    addRow(1, u"Unsafe in 24 hours"_s, u"DayUnsafe"_s);
    addRow(2, u"Closures"_s, u"DayClosures"_s);
    addRow(3, u"Unsafe in 7 days"_s, u"WeekUnsafe"_s);
    addRow(4, u"Closures"_s, u"WeekClosures"_s);
    note_->setObjectName(u"LblWhatIf"_s);
    note_->setWordWrap(true);
    progress_->setTextVisible(false);
    progress_->setFixedHeight(4);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(look::kGap);
    for (QWidget* part : std::initializer_list<QWidget*>{bands_, table_, progress_, note_})
        column->addWidget(part);
    for (QWidget* part : std::initializer_list<QWidget*>{bands_, table_, progress_})
        part->hide();
    again_.setInterval(kLookMs);
    connect(&again_, &QTimer::timeout, this, &WhatIf::look);
}

WhatIf::~WhatIf() {
    cancel();
    pool_.waitForDone();
}

void WhatIf::addRow(int row, const QString& caption, const QString& name) {
    grid_->addWidget(makeDimmed(caption, table_), row, 0);
    for (int column = 1; column <= 2; ++column) {
        auto* cell = new QLabel(table_);
        cell->setObjectName(u"WhatIf%1%2"_s.arg(name).arg(column - 1));
        cell->setTextInteractionFlags(Qt::TextSelectableByMouse);
        if (column == 2) {
            QFont bold = cell->font();
            bold.setBold(true);
            cell->setFont(bold);
        }
        grid_->addWidget(cell, row, column, Qt::AlignRight);
    }
}

void WhatIf::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    again_.start();
    judge(rulesOf(core_.records.conditions));
}

void WhatIf::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    again_.stop();
    cancel();
}

// A limit that is still being typed is not judged.
void WhatIf::look() {
    const Rules now = rulesOf(core_.records.conditions);
    if (std::exchange(seen_, now) == now && now != judged_)
        judge(now);
}

void WhatIf::cancel() {
    if (cancelled_)
        *cancelled_ = true;
    cancelled_.reset();
}

void WhatIf::judge(const Rules& edited) {
    cancel();
    judged_ = seen_ = edited;
    cancelled_ = std::make_shared<std::atomic<bool>>(false);
    const Rules inForce = core_.remembered.rules.value_or(before_);
    const std::int64_t now = core_.clock.now().toMSecsSinceEpoch();
    pool_.start(
        [this, edited, inForce, now, units = unitsOf(core_.records.units), cancelled = cancelled_] {
            const auto progress = [this, cancelled](double done) {
                QMetaObject::invokeMethod(progress_, [bar = progress_, cancelled, done] {
                    bar->setValue(static_cast<int>(100 * done));
                    bar->setVisible(!*cancelled);
                });
                return !*cancelled;
            };
            const WhatIfResult result = judgeWeek(now, inForce, edited, units, progress);
            QMetaObject::invokeMethod(this, [this, cancelled, result] {
                if (!*cancelled)
                    show(result);
            });
        });
}

void WhatIf::show(const WhatIfResult& result) {
    cancelled_.reset();
    progress_->hide();
    const bool known = result.fault.isEmpty();
    bands_->setVisible(known);
    table_->setVisible(known);
    if (!known) {
        note_->setText(u"No week to judge: "_s + result.fault);
        return;
    }
    bands_->show(result);
    const auto put = [this](const QString& name, const QString& inForce, const QString& edited) {
        findChild<QLabel*>(u"WhatIf"_s + name + u'0')->setText(inForce);
        findChild<QLabel*>(u"WhatIf"_s + name + u'1')->setText(edited);
    };
    const auto putSpan = [&](const QString& name, const RulesResult::Span& inForce,
                             const RulesResult::Span& edited) {
        put(name + u"Unsafe"_s, durationText(inForce.unsafeMs / 1'000),
            durationText(edited.unsafeMs / 1'000));
        put(name + u"Closures"_s, QString::number(inForce.closures),
            QString::number(edited.closures));
    };
    putSpan(u"Day"_s, result.inForce.day, result.edited.day);
    putSpan(u"Week"_s, result.inForce.week, result.edited.week);
    for (const QString& name :
         {u"Head1"_s, u"DayUnsafe1"_s, u"DayClosures1"_s, u"WeekUnsafe1"_s, u"WeekClosures1"_s})
        findChild<QLabel*>(u"WhatIf"_s + name)->setVisible(result.differs);
    note_->setText(u"Change a limit, and the recorded week is judged again with it."_s);
    note_->setVisible(!result.differs);
}

} // namespace skyhold
