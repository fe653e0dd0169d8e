// The graphs of a read cycle: drawn from the history, and saved as image files.
#pragma once

#include "graphs/direction_graph.h"
#include "graphs/export.h"
#include "graphs/value_graph.h"
#include "records/condition_controls.h"
#include "records/file_controls.h"
#include "records/graph_history.h"
#include "records/graph_pictures.h"

#include <array>
#include <variant>

namespace skyhold {

// What a picture shows and was saved as, so that neither is made twice.
struct RenderedGraph {
    std::variant<std::monostate, ValueGraph, DirectionGraph> graph;
    SavedImage saved;
};
using RenderedGraphs = std::array<RenderedGraph, 6>;

// What a graph is drawn from.
struct GraphSources {
    const GraphHistory& history;
    const ConditionControls& conditions; // thresholds, descriptions, colours
    const GraphControls& graphs;         // colours of the graphs, the time span, what is wanted
};

// Draws one graph (in the order of GraphPictures), unless its picture shows the same already.
void drawGraph(std::size_t index, const GraphSources& sources, Picture& picture,
               RenderedGraph& rendered);

// Once per read cycle: draws the graphs that are to be drawn and saves those that are to be saved.
// A failure is reported on the status-code line as i23, a missing image library as i24.
void RenderGraphs(const GraphSources& sources, GraphPictures& pictures, RenderedGraphs& rendered,
                  ImageLibrary& library, Label& statusbar2);

} // namespace skyhold
