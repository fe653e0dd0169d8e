// SPDX-License-Identifier: GPL-3.0-or-later
// The graphs of a read cycle: drawn from the history, and saved as image files.
#pragma once

#include "graphs/direction_graph.h"
#include "graphs/image_writer.h"
#include "graphs/value_graph.h"
#include "records/condition_controls.h"
#include "records/file_controls.h"
#include "records/graph_history.h"
#include "records/graph_pictures.h"

#include <array>
#include <variant>

namespace skyhold {

// What a picture shows, so that it is not drawn twice.
using RenderedGraph = std::variant<std::monostate, ValueGraph, DirectionGraph>;
using RenderedGraphs = std::array<RenderedGraph, kGraphCount>;

// What a graph is drawn from.
struct GraphSources {
    const GraphHistory& history;
    const ConditionControls& conditions; // thresholds, descriptions, colours
    const GraphControls& graphs;         // colours of the graphs, the time span, what is wanted
};

// Draws one graph (in the order of GraphPictures), unless its picture shows the same already.
void drawGraph(std::size_t index, const GraphSources& sources, Picture& picture,
               RenderedGraph& rendered);

// Once per read cycle: draws the graphs that are to be drawn.
void DrawGraphs(const GraphSources& sources, GraphPictures& pictures, RenderedGraphs& rendered);

// Once per read cycle: hands the pictures that are to be saved to the writer. The status code of
// what has failed so far: i23 when an image could not be written, i24 without the image library;
// else empty.
QString SaveImages(const GraphControls& graphs, GraphPictures& pictures, ImageLibrary& library,
                   ImageWriter& writer);

} // namespace skyhold
