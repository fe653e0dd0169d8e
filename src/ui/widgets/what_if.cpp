// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/what_if.h"

#include "conditions/rules_of.h"
#include "core/monitoring_core.h"
#include "history/reader.h"
#include "replay/report.h"
#include "ui/look/look.h"

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr std::int64_t kWeekMs = 7LL * 86'400'000;

KeptUnits unitsOf(const UnitControls& units) {
    return {units.UnitsTemp.Index == 1 ? 'F' : 'C',
            "KMmk"[std::clamp(units.UnitsSpeed.Index.value(), 0, 3)]};
}

} // namespace

WhatIf::WhatIf(MonitoringCore& core, QWidget* parent)
    : QWidget(parent)
    , core_(core)
    , before_(rulesOf(core.records.conditions))
    , button_(new QPushButton(this))
    , progress_(new QProgressBar(this))
    , answer_(new QLabel(this)) {
    setObjectName(u"WhatIf"_s);
    pool_.setMaxThreadCount(1);
    button_->setObjectName(u"ButtWhatIf"_s);
    button_->setText(u"&What if…"_s);
    button_->setToolTip(u"Judges the recorded week again with the limits as they are now, and "
                        u"compares with those of the last session"_s);
    progress_->hide();
    answer_->setObjectName(u"LblWhatIf"_s);
    answer_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    answer_->setWordWrap(true);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(look::kGap);
    column->addWidget(button_, 0, Qt::AlignLeft);
    column->addWidget(progress_);
    column->addWidget(answer_);
    connect(button_, &QPushButton::clicked, this, &WhatIf::startOrCancel);
}

WhatIf::~WhatIf() {
    if (cancelled_)
        *cancelled_ = true;
    pool_.waitForDone();
}

void WhatIf::startOrCancel() {
    if (cancelled_) {
        *cancelled_ = true;
        return;
    }
    cancelled_ = std::make_shared<std::atomic<bool>>(false);
    button_->setText(u"Cancel"_s);
    progress_->setValue(0);
    progress_->show();
    answer_->clear();

    const Rules tried = rulesOf(core_.records.conditions);
    const Rules inForce = core_.remembered.rules.value_or(before_);
    const std::int64_t now = core_.clock.now().toMSecsSinceEpoch();
    const KeptUnits units = unitsOf(core_.records.units);
    pool_.start([this, tried, inForce, now, units, cancelled = cancelled_] {
        const auto progress = [this, cancelled](double done) {
            QMetaObject::invokeMethod(progress_, [bar = progress_, done] {
                bar->setValue(static_cast<int>(100 * done));
            });
            return !*cancelled;
        };
        const ReplaySource source = fromHistory(historyPath(), now - kWeekMs, now, units);
        Comparison comparison;
        comparison.fault = source.fault;
        if (source.fault.isEmpty())
            comparison = compareRules(source, inForce, tried, progress);
        QMetaObject::invokeMethod(this, [this, comparison] { show(comparison); });
    });
}

void WhatIf::show(const Comparison& comparison) {
    cancelled_.reset();
    progress_->hide();
    button_->setText(u"&What if…"_s);
    if (!comparison.fault.isEmpty())
        answer_->setText(u"No week to judge: "_s + comparison.fault);
    else if (!comparison.stopped)
        answer_->setText(u"The recorded week with these limits: "_s +
                         comparisonSummary(comparison));
}

} // namespace skyhold
