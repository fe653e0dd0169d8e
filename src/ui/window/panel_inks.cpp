// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window/panel_inks.h"

#include "ui/look/look.h"

namespace skyhold::panel {

namespace {

constexpr QRgb kAmber = 0xffffb000;
constexpr QRgb kNightRed = 0xffff0000;
constexpr QRgb kNightShape = 0xffb80000;

bool atNight() {
    return lookInForce() == Look::Night;
}

} // namespace

QColor warning(const QColor& ground) {
    return atNight() ? QColor(kNightRed) : look::ink(kAmber, ground);
}

QColor warningEdge() {
    return atNight() ? QColor(kNightShape) : look::ink(kAmber, look::kField);
}

QColor alarmGround() {
    switch (lookInForce()) {
    case Look::Night:
        return Qt::black;
    case Look::Panel:
        return {0x43, 0x09, 0x0d};
    case Look::Desktop:
        break;
    }
    return look::kCard;
}

QColor alarmEdge() {
    if (atNight())
        return kNightRed;
    return look::ink({0xff, 0x5a, 0x5a}, look::kCard);
}

QColor alarmStrip() {
    return atNight() ? QColor(kNightRed) : QColor(0xc4, 0x16, 0x1c);
}

QColor onAlarmStrip() {
    return atNight() ? Qt::black : Qt::white;
}

QColor working() {
    return atNight() ? QColor(kNightShape) : look::ink({0x3f, 0xd0, 0x7a}, look::kCard);
}

QColor limitLine() {
    return look::ink({0xff, 0x5a, 0x5a}, look::kCard);
}

QColor limitNumber() {
    return look::ink({0xff, 0x8f, 0x8f}, look::kCard);
}

} // namespace skyhold::panel
