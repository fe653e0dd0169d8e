// SPDX-License-Identifier: GPL-3.0-or-later
// Looks at drawn pictures by position.
#pragma once

#include "graphs/graph_paper.h"
#include "records/graph_pictures.h"

#include <algorithm>

namespace skyhold {

inline constexpr double kSecond = 1.0 / 86'400;
inline constexpr double kNight = 46'342; // a day number; midnight

inline QRgb pixel(const Picture& picture, int x, int y) {
    return picture.Image.pixel(x, y);
}

inline QRgb rgb(Colour colour) {
    return paintColour(colour).rgb();
}

// How many pixels of the rectangle have another colour than its `ground`.
inline int ink(const Picture& picture, const QRect& rectangle, QRgb ground) {
    int found = 0;
    for (int y = rectangle.top(); y <= rectangle.bottom(); ++y) {
        for (int x = rectangle.left(); x <= rectangle.right(); ++x)
            found += pixel(picture, x, y) != ground ? 1 : 0;
    }
    return found;
}

inline bool holds(const Picture& picture, const QRect& rectangle, QRgb colour) {
    for (int y = rectangle.top(); y <= rectangle.bottom(); ++y) {
        for (int x = rectangle.left(); x <= rectangle.right(); ++x) {
            if (pixel(picture, x, y) == colour)
                return true;
        }
    }
    return false;
}

// `count` points `stepSeconds` apart, all of one value.
inline GraphSeries steady(double value, int count, double stepSeconds, double spanSeconds) {
    GraphSeries series{.points = {}, .spanSeconds = spanSeconds};
    for (int i = 0; i < count; ++i)
        series.points.push_back({kNight + i * stepSeconds * kSecond, value});
    return series;
}

// The height of the plot area in a picture of this height.
inline int plotBottom(const QSize& size) {
    Picture picture;
    picture.Size = size;
    return GraphPaper(picture, 0).bottom();
}

} // namespace skyhold
