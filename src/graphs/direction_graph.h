// SPDX-License-Identifier: GPL-3.0-or-later
// The wind direction against time, as single dots on a scale from 0 to 360 degrees.
#pragma once

#include "graphs/graph_series.h"
#include "model/colours.h"
#include "records/graph_pictures.h"

namespace skyhold {

// Everything that a direction graph shows: equal ones give equal pictures of the same size.
struct DirectionGraph {
    GraphSeries series; // degrees
    Colour textColour = 0;
    Colour pointColour = 0;
    Colour gridColour = 0;
    bool operator==(const DirectionGraph&) const = default;
};

// Height of a direction in a plot area from 0 to `bottom`: 0 degrees on top, as the values of the
// other graphs grow downwards too. Kept one unit inside the edges.
int directionPosition(double degrees, int bottom);

void DrawDirectionGraph(const DirectionGraph& graph, Picture& picture);

} // namespace skyhold
