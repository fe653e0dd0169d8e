// SPDX-License-Identifier: GPL-3.0-or-later
// What the window lays over the picture of a graph, and what is not in the saved images: the values
// at the borders of its bands, and the point that is pointed at.
#pragma once

#include "graphs/render.h"

#include <QPainter>

namespace skyhold {

// In units of the picture, as those below. A direction has its scale in the picture.
void paintScale(QPainter& painter, const RenderedGraph& graph, const Picture& picture);

// The point whose time is nearest to `x`: a line, a dot, its time and its value.
void paintPointAt(QPainter& painter, const RenderedGraph& graph, const Picture& picture, double x,
                  const QString& unit);

} // namespace skyhold
