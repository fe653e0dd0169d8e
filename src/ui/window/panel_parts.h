// SPDX-License-Identifier: GPL-3.0-or-later
// Small widgets of the panel that is always in view.
#pragma once

#include "ui/widgets/readout.h"

namespace skyhold {

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
