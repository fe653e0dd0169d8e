// SPDX-License-Identifier: GPL-3.0-or-later
#include "sensors/roof_switch.h"

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr std::int64_t kRepeatMs = 30'000;

} // namespace

RoofSwitch::RoofSwitch(SwitchDriver& driver, double closeAfterSeconds,
                       std::function<std::int64_t()> nowMs, std::function<void(const QString&)> log)
    : driver_(driver)
    , closeAfterSeconds_(closeAfterSeconds)
    , nowMs_(std::move(nowMs))
    , log_(std::move(log)) {}

void RoofSwitch::want(RoofState wanted, bool mayOpen) {
    heard();
    if (wanted == RoofState::Closed) {
        if (wanted_ != RoofState::Closed)
            close(u"the monitor closes the roof"_s);
        return;
    }
    if (wanted_ == RoofState::Opened)
        return;
    if (!mayOpen) {
        log_(u"the roof is not opened: not all values are there, or the verdict is unsafe"_s);
        return;
    }
    if (!driver_.open())
        return;
    wanted_ = RoofState::Opened;
    log_(u"the monitor opens the roof"_s);
}

void RoofSwitch::heard() {
    heardMs_ = nowMs_();
}

void RoofSwitch::tick() {
    const double silent = static_cast<double>(nowMs_() - heardMs_) / 1000;
    if (wanted_ == RoofState::Opened && closeAfterSeconds_ > 0 && silent > closeAfterSeconds_)
        close(u"the monitor has been silent for %1 s: the roof is closed"_s.arg(qRound(silent)));
    else if (wanted_ == RoofState::Closed && driver_.state() != RoofState::Closed &&
             nowMs_() - sentMs_ >= kRepeatMs)
        close({});
}

void RoofSwitch::end() {
    if (wanted_ == RoofState::Opened)
        close(u"this program ends: the roof is closed"_s);
}

void RoofSwitch::close(const QString& why) {
    if (!why.isEmpty())
        log_(why);
    wanted_ = RoofState::Closed;
    sentMs_ = nowMs_();
    driver_.close();
}

} // namespace skyhold
