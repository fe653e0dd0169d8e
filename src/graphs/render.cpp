// SPDX-License-Identifier: GPL-3.0-or-later
#include "graphs/render.h"

#include "graphs/graph_paper.h"
#include "platform/files.h"

#include <optional>

namespace skyhold {

namespace {

struct GraphKind {
    double GraphPoint::*field;
    std::optional<Quantity> quantity; // none: the direction, which has no levels
    const char* fileName;
};

constexpr std::array<GraphKind, kGraphCount> kGraphs{
    {{&GraphPoint::wind, Quantity::Wind, "Kiv_ImageWindCondition"},
     {&GraphPoint::gust, Quantity::Gust, "Kiv_ImageGustCondition"},
     {&GraphPoint::direction, std::nullopt, "Kiv_ImageWindDirCondition"},
     {&GraphPoint::spread, Quantity::Dew, "Kiv_ImageDewCondition"},
     {&GraphPoint::humidity, Quantity::Humidity, "Kiv_ImageHumCondition"},
     {&GraphPoint::temperature, Quantity::Temperature, "Kiv_ImageTempCondition"}}};

ValueGraph valueGraph(const GraphKind& kind, GraphSeries series, const ConditionControls& controls,
                      const std::array<Label, 3>& colours) {
    ValueGraph graph{.series = std::move(series),
                     .bands = {},
                     .thresholds = {},
                     .textColour = colours[0].BackColor,
                     .lineColour = colours[1].BackColor};
    for (std::size_t i = 0; i < 3; ++i) {
        const Label& swatch = controls.Color[*kind.quantity][i];
        graph.bands[i] = {swatch.Caption, swatch.BackColor};
        graph.thresholds[i] = controls.Limit[*kind.quantity][i].Value;
    }
    return graph;
}

void draw(const ValueGraph& graph, Picture& picture) {
    DrawValueGraph(graph, picture);
}
void draw(const DirectionGraph& graph, Picture& picture) {
    DrawDirectionGraph(graph, picture);
}

template <class Graph>
void drawWhenChanged(Graph graph, Picture& picture, RenderedGraph& rendered) {
    const Graph* shown = std::get_if<Graph>(&rendered);
    if (shown != nullptr && *shown == graph && picture.fits())
        return;
    draw(graph, picture);
    rendered = std::move(graph);
}

} // namespace

void drawGraph(std::size_t index, const GraphSources& sources, Picture& picture,
               RenderedGraph& rendered) {
    const GraphKind& kind = kGraphs[index];
    const std::array<Label, 3>& colours = sources.graphs.GraphColor[index];
    GraphSeries series = graphSeries(sources.history, kind.field,
                                     sources.graphs.GraphSpan.Caption.value().toDouble());
    if (kind.quantity)
        drawWhenChanged(valueGraph(kind, std::move(series), sources.conditions, colours), picture,
                        rendered);
    else
        drawWhenChanged(DirectionGraph{.series = std::move(series),
                                       .textColour = colours[0].BackColor,
                                       .pointColour = colours[1].BackColor,
                                       .gridColour = colours[2].BackColor},
                        picture, rendered);
}

void DrawGraphs(const GraphSources& sources, GraphPictures& pictures, RenderedGraphs& rendered) {
    for (std::size_t i = 0; i < kGraphs.size(); ++i) {
        if (sources.graphs.GraphGenerate[i].checked())
            drawGraph(i, sources, pictures[i], rendered[i]);
    }
}

QString SaveImages(const GraphControls& graphs, GraphPictures& pictures, ImageLibrary& library,
                   ImageWriter& writer) {
    const bool png = graphs.ImageType.checked();
    const QString extension = png ? QStringLiteral(".png") : QStringLiteral(".jpg");
    const QString folder = graphs.GraphImagePath.Caption.value().trimmed();
    const bool missing = library.functions() == nullptr;

    bool wanted = false;
    for (std::size_t i = 0; i < kGraphs.size(); ++i) {
        if (!graphs.GraphImage[i].checked() || folder.isEmpty()) {
            writer.forget(i);
            continue;
        }
        wanted = true;
        if (missing)
            continue;
        if (pictures[i].Image.isNull()) // never drawn: an empty sheet
            const GraphPaper empty(pictures[i], 0);
        writer.save(i,
                    {.image = pictures[i].Image,
                     .drawing = pictures[i].Drawings,
                     .name = joinPath(folder, QString::fromLatin1(kGraphs[i].fileName) + extension),
                     .format = png ? ImageFormat::Png : ImageFormat::Jpeg,
                     .flags = ImageSaveFlags(graphs)});
    }
    if (wanted && missing)
        return QStringLiteral("i24");
    return writer.failed() ? QStringLiteral("i23") : QString();
}

} // namespace skyhold
