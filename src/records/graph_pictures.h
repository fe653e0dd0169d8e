// SPDX-License-Identifier: GPL-3.0-or-later
// The six graph pictures, as the read cycle last drew them.
#pragma once

#include "records/file_controls.h"

#include <QImage>
#include <QProperty>
#include <QSize>

#include <array>

namespace skyhold {

struct Picture {
    QSize Size{600, 200};       // in units of the window; a view may set another
    double PixelRatio = 1;      // image pixels per unit
    QImage Image;               // the last drawing, Size times PixelRatio; null before the first
    QProperty<int> Drawings{0}; // counts drawings, so that a view can follow

    QSize imageSize() const { return (QSizeF(Size) * PixelRatio).toSize().expandedTo({1, 1}); }
    // Whether the last drawing is as large as the view wants it.
    bool fits() const {
        return Image.size() == imageSize() && Image.devicePixelRatio() == PixelRatio;
    }
};

using GraphPictures = std::array<Picture, kGraphCount>;

} // namespace skyhold
