// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window/menu_clock.h"

#include "ui/look/look.h"
#include "ui/widgets/bind.h"

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

MenuClock::MenuClock(MonitoringCore& core, QWidget* parent)
    : Readout(parent)
    , core_(core) {
    setObjectName(u"MenuClock"_s);
    setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    setContentsMargins(0, 0, look::kMargin, 0);
    next_.setSingleShot(true);
    connect(&next_, &QTimer::timeout, this, &MenuClock::showTime);
    follow(this, core.records.session.State, [this](SessionState) { showTime(); });
    followLook(this, [this] { grow(); });
}

void MenuClock::grow() {
    setPixelSize(QFontInfo(parentWidget()->font()).pixelSize());
    reserve(u"Wed 00 Mmm 0000 00:00:00"_s);
    setFixedHeight(parentWidget()->sizeHint().height());
}

void MenuClock::showEvent(QShowEvent* event) {
    Readout::showEvent(event);
    showTime();
}

void MenuClock::hideEvent(QHideEvent* event) {
    Readout::hideEvent(event);
    next_.stop();
}

void MenuClock::showTime() {
    const bool counts = core_.records.session.begun();
    const QDateTime now = core_.clock.now();
    setText(QLocale::c().toString(now, counts ? u"ddd d MMM yyyy hh:mm:ss"_s
                                              : u"ddd d MMM yyyy hh:mm"_s));
    next_.stop();
    if (counts || !isVisible())
        return;
    const QTime time = now.time();
    const int left = 60'001 - 1'000 * time.second() - time.msec(); // of the minute
    next_.start(std::max(static_cast<int>(left / std::max(core_.clock.scale(), 1.0)), 50));
}

} // namespace skyhold
