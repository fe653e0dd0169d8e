// SPDX-License-Identifier: GPL-3.0-or-later
// Small widgets of the panel that is always in view, and how large they are.
#pragma once

#include "ui/widgets/readout.h"

#include <algorithm>
#include <functional>

namespace skyhold {

// Lengths are stated for a window of 1280 by 800.
struct PanelSize {
    qreal unit = 1;       // how many times as large they are
    bool compact = false; // beside a page of settings

    int length(qreal at1) const { return qRound(at1 * unit); }
    // Letters can still be read in the smallest window. Of few sizes: each is a font to load.
    int letters(qreal at1) const {
        const int size = qRound(at1 * unit);
        return std::max(kLeastLetters, size - size % (size < 24 ? 2 : 4));
    }
    bool operator==(const PanelSize&) const = default;

    static constexpr int kLeastLetters = 11;
};

// A part of the panel that somebody else places.
struct PanelPart {
    QWidget* card;
    std::function<void(const PanelSize&)> grow;
};

constexpr int kBannerHeight = 104;
constexpr int kCompactBannerHeight = 66;

inline int bannerHeight(const PanelSize& size) {
    return size.length(size.compact ? kCompactBannerHeight : kBannerHeight);
}

inline Readout* makeReadout(QWidget* parent, const QString& name, int pixelSize,
                            bool bold = false) {
    auto* readout = new Readout(parent);
    readout->setObjectName(name);
    readout->setPixelSize(pixelSize, bold);
    return readout;
}

// A caption that stands fixed in the window.
inline Readout* makeCaption(QWidget* parent, const QString& text) {
    Readout* caption = makeReadout(parent, {}, 13);
    caption->setTone(Tone::Dim);
    caption->setText(text);
    caption->reserve(text);
    return caption;
}

inline LampWidget* makeLamp(QWidget* parent, const QString& name, int diameter) {
    auto* lamp = new LampWidget(diameter, parent);
    lamp->setObjectName(name);
    return lamp;
}

} // namespace skyhold
