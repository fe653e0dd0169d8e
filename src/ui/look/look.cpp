// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/look/look.h"

#include "ui/look/flat_style.h"
#include "ui/look/shades.h"
#include "ui/widgets/bind.h"

#include <QApplication>
#include <QPalette>
#include <QToolTip>

#include <utility>

namespace skyhold {

namespace {

const look::Scheme kPanel{
    .window = {0x12, 0x17, 0x1d},
    .field = {0x0b, 0x0e, 0x12},
    .card = {0x1c, 0x23, 0x2b},
    .group = {0x18, 0x1e, 0x25},
    .edge = {0x33, 0x3e, 0x4a},
    .button = {0x31, 0x3c, 0x48},
    .text = {0xe8, 0xed, 0xf2},
    .dimText = {0xa9, 0xb5, 0xc1},
    .disabledText = {0x84, 0x92, 0xa0},
    .accent = {0x4a, 0xa3, 0xdf},
    .primary = {0x1f, 0x6f, 0xa8},
    .loud = {0xb3, 0x53, 0x00},
    .strip = {0x0b, 0x0e, 0x12},
    .stripText = {0xe8, 0xed, 0xf2},
};

const look::Scheme kNight{
    .window = {0x00, 0, 0},
    .field = {0x00, 0, 0},
    .card = {0x0c, 0, 0},
    .group = {0x0a, 0, 0},
    .edge = {0x50, 0, 0},
    .button = {0x2c, 0, 0},
    .text = {0xf0, 0, 0},
    .dimText = {0xf0, 0, 0},
    .disabledText = {0x88, 0, 0},
    .accent = {0xff, 0, 0},
    .primary = {0x50, 0, 0},
    .loud = {0x60, 0, 0},
    .strip = {0x0c, 0, 0},
    .stripText = {0xf0, 0, 0},
};

QColor between(const QColor& one, const QColor& other, double share) {
    const auto mixed = [share](int from, int to) {
        return static_cast<int>(from + (to - from) * share);
    };
    return QColor(mixed(one.red(), other.red()), mixed(one.green(), other.green()),
                  mixed(one.blue(), other.blue()));
}

look::Scheme desktopScheme(const QPalette& palette) {
    const QColor window = palette.color(QPalette::Window);
    const QColor text = palette.color(QPalette::WindowText);
    return {.window = window,
            .field = palette.color(QPalette::Base),
            .card = palette.color(QPalette::AlternateBase),
            .group = window,
            .edge = between(window, text, 0.25),
            .button = palette.color(QPalette::Button),
            .text = text,
            .dimText = between(text, window, 0.3),
            .disabledText = between(text, window, 0.45),
            .accent = palette.color(QPalette::Highlight),
            .primary = palette.color(QPalette::Button),
            .loud = kPanel.loud,
            .strip = palette.color(QPalette::AlternateBase),
            .stripText = text};
}

QPalette paletteOf(const look::Scheme& scheme) {
    QPalette palette;
    palette.setColor(QPalette::Window, scheme.window);
    palette.setColor(QPalette::WindowText, scheme.text);
    palette.setColor(QPalette::Base, scheme.field);
    palette.setColor(QPalette::AlternateBase, scheme.card);
    palette.setColor(QPalette::Text, scheme.text);
    palette.setColor(QPalette::PlaceholderText, scheme.disabledText);
    palette.setColor(QPalette::Button, scheme.button);
    palette.setColor(QPalette::ButtonText, scheme.text);
    palette.setColor(QPalette::BrightText, scheme.accent);
    palette.setColor(QPalette::ToolTipBase, scheme.card);
    palette.setColor(QPalette::ToolTipText, scheme.text);
    palette.setColor(QPalette::Highlight, scheme.accent);
    palette.setColor(QPalette::HighlightedText, scheme.field);
    palette.setColor(QPalette::Link, scheme.accent);
    palette.setColor(QPalette::LinkVisited, scheme.accent);
    palette.setColor(QPalette::Light, scheme.button.lighter(130));
    palette.setColor(QPalette::Midlight, scheme.button.lighter(115));
    palette.setColor(QPalette::Mid, scheme.edge);
    palette.setColor(QPalette::Dark, scheme.field);
    palette.setColor(QPalette::Shadow, Qt::black);
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, scheme.disabledText);
    return palette;
}

// The desktop's, whose ground may be dark: a shadow behind what is disabled doubles light letters.
class DesktopStyle : public QProxyStyle {
  public:
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* answer) const override {
        return hint == SH_EtchDisabledText ? 0
                                           : QProxyStyle::styleHint(hint, option, widget, answer);
    }
};

Look inForce = Look::Panel;

QProperty<int>& changes() {
    static QProperty<int> count{0};
    return count;
}

} // namespace

namespace look {

namespace detail {
Scheme scheme = kPanel;
}

QColor ink(const QColor& stated, const QColor& ground) {
    constexpr double kOnStrip = 7; // small letters
    switch (inForce) {
    case Look::Panel:
        // The status lines have stated colours for a light ground, navy and dark green.
        return ground == kStrip ? readableInk(stated, ground, kOnStrip) : stated;
    case Look::Night:
        return nightInk(stated);
    case Look::Desktop:
        return readableInk(stated, ground);
    }
    return stated;
}

QColor light(const QColor& stated) {
    return inForce == Look::Night ? nightLight(stated) : stated;
}

QColor ground(const QColor& stated) {
    return inForce == Look::Night ? nightGround(stated) : stated;
}

QColor inkOn(const QColor& ground) {
    constexpr int kMiddleGrey = 128;
    if (inForce == Look::Night)
        return kAccent;
    return qGray(ground.rgb()) < kMiddleGrey ? Qt::white : Qt::black;
}

QImage graph(const QImage& graph) {
    switch (inForce) {
    case Look::Panel:
        return darkPicture(graph);
    case Look::Night:
        return nightPicture(graph);
    case Look::Desktop:
        break;
    }
    return graph;
}

QImage icon(const QImage& icon) {
    return inForce == Look::Night ? nightPicture(icon) : icon;
}

QImage photo(const QImage& picture) {
    return inForce == Look::Night ? nightPhoto(picture) : picture;
}

} // namespace look

void applyLook(QApplication& application, Look look) {
    static bool flat = false;
    inForce = look;
    // The desktop's own dialogs would not follow.
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs, look == Look::Night);
    if (look == Look::Desktop) {
        application.setStyle(new DesktopStyle); // owned by the application, as the other
        flat = false;
        application.setPalette(QPalette());
        look::detail::scheme = desktopScheme(application.palette());
    } else {
        look::detail::scheme = look == Look::Night ? kNight : kPanel;
        if (!flat)
            application.setStyle(new FlatStyle);
        flat = true;
        application.setPalette(paletteOf(look::detail::scheme));
    }
    changes() = changes() + 1;
}

Look lookInForce() {
    return inForce;
}

void followLook(QObject* owner, std::function<void()> apply) {
    follow(owner, changes(), [apply = std::move(apply)](int) { apply(); });
}

QColor screenColour(Colour colour) {
    return QColor(colour & 0xFF, (colour >> 8) & 0xFF, (colour >> 16) & 0xFF);
}

} // namespace skyhold
