// SPDX-License-Identifier: GPL-3.0-or-later
// A quantity against time over the three bands of its conditions.
#pragma once

#include "graphs/graph_series.h"
#include "model/colours.h"
#include "records/graph_pictures.h"

#include <QString>

#include <array>

namespace skyhold {

struct ConditionBand {
    QString caption;
    Colour colour = 0;
    bool operator==(const ConditionBand&) const = default;
};

// Everything that a value graph shows: equal ones give equal pictures of the same size.
struct ValueGraph {
    GraphSeries series;
    std::array<ConditionBand, 3> bands; // the first condition is on top
    std::array<double, 3> thresholds{}; // the upper bound of each condition
    Colour textColour = 0;
    Colour lineColour = 0;
    bool operator==(const ValueGraph&) const = default;
};

// Height of a value in a plot area from 0 to `bottom`. Each band has a third of it, whatever its
// width in values; below the first band lies 0, or twice the first threshold if that is negative.
// Values beyond the bands lie one unit inside the edge.
int verticalPosition(double value, const std::array<double, 3>& thresholds, int bottom);

void DrawValueGraph(const ValueGraph& graph, Picture& picture);

} // namespace skyhold
