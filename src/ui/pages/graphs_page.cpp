// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/pages/graphs_page.h"

#include "ui/dialogs/kiv_color.h"
#include "ui/look/look.h"
#include "ui/pages/page_parts.h"
#include "ui/widgets/bind.h"
#include "ui/widgets/graph_view.h"
#include "ui/widgets/kiv_get_number.h"
#include "ui/widgets/open_editor.h"
#include "ui/widgets/readout.h"
#include "units/unit_text.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

struct GraphPlace {
    QString title;
    std::optional<Quantity> quantity; // none: the direction
    const char* suffix;               // of the control names
    QStringList colours;              // what each colour paints
};

void addSwatch(QHBoxLayout* row, const QString& name, const QString& painted, const QString& graph,
               Label& colour, const std::function<void()>& redraw) {
    auto* swatch = new Swatch(row->parentWidget());
    swatch->setObjectName(name);
    swatch->setPixelSize(11);
    swatch->setFixedHeight(20);
    swatch->setText(painted);
    swatch->setAccessibleName(u"%1: colour of the graph %2"_s.arg(painted, graph));
    swatch->reserve(painted + u"  "_s);
    follow(swatch, colour.BackColor,
           [swatch](Colour fill) { swatch->setFill(screenColour(fill)); });
    makeEditable(swatch, u"Change this colour"_s, [swatch, &colour, redraw] {
        KivColor(colour, nullptr, swatch).exec();
        redraw();
    });
    row->addWidget(swatch);
}

// The value of a session that runs, as its last cycle read it.
std::optional<double> valueNow(const MonitoringCore& core, std::optional<Quantity> quantity) {
    const Observation& observation = core.result.observation;
    if (!core.records.session.running() || core.result.number == 0 || !observation.station.usable())
        return std::nullopt;
    return quantity ? observation.values[*quantity] : observation.station.windDirection;
}

// Beside the title, and the unit for the view's own readings.
void showValueNow(Readout* readout, GraphView* view, MonitoringCore& core,
                  std::optional<Quantity> quantity) {
    const auto show = [=, &core] {
        const CycleResult& result = core.result;
        const QString unit =
            quantity ? shownUnit(rowOf(*quantity).measure, result.temperatureUnit, result.speedUnit)
                     : u"°"_s;
        const std::optional<double> value = valueNow(core, quantity);
        readout->setText(value ? formatNumber(*value, u"0.0", core.forms) + u' ' + unit : u"–"_s);
        view->setUnit(unit);
    };
    follow(readout, core.records.session.CyclesDone, [show](std::int64_t) { show(); });
    follow(readout, core.records.session.State, [show](SessionState) { show(); });
}

QLayout* makeGraph(std::size_t index, const GraphPlace& place, MonitoringCore& core,
                   QWidget* page) {
    Records& records = core.records;
    GraphControls& graphs = records.graphs;
    CheckBox& generate = graphs.GraphGenerate[index];
    // A picture that is no longer drawn keeps its last drawing, and none is made before the first.
    const auto redraw = [&core, &generate, index] {
        const Records& drawn = core.records;
        Picture& picture = core.records.pictures[index];
        if (generate.checked() && !picture.Image.isNull())
            drawGraph(index, {drawn.history, drawn.conditions, drawn.graphs}, picture,
                      core.renderedGraphs[index]);
    };
    auto* column = new QVBoxLayout;
    column->setSpacing(2);
    auto* row = new QHBoxLayout;
    row->setSpacing(4);
    column->addLayout(row);
    const QByteArray suffix(place.suffix);
    QCheckBox* title =
        makeCheck(page, QString::fromLatin1("GraphGenerate" + suffix), place.title, generate);
    // A title is to be read while the box is disabled, too.
    followLook(title, [title] {
        QPalette readable;
        readable.setColor(QPalette::Disabled, QPalette::WindowText, look::kDimText);
        title->setPalette(readable);
    });
    row->addWidget(title);
    auto* now = new Readout(page);
    now->setObjectName(QString::fromLatin1("GraphNow" + suffix));
    now->setPixelSize(12, true);
    const bool speed = place.quantity && rowOf(*place.quantity).measure == Measure::Speed;
    now->reserve(speed ? u"000.0 km/hr"_s : u"-00.0 °C"_s);
    row->addWidget(now);
    row->addStretch();
    auto* view = new GraphView(records.pictures[index], core.renderedGraphs[index], redraw, page);
    showValueNow(now, view, core, place.quantity);
    view->setObjectName(QString::fromLatin1("Graph" + suffix));
    view->setAccessibleName(place.title);
    column->addWidget(view, 1);
    auto* holder = new QWidget(page);
    auto* swatches = new QHBoxLayout(holder);
    swatches->setContentsMargins(0, 0, 0, 0);
    swatches->setSpacing(4);
    for (std::size_t i = 0; i < static_cast<std::size_t>(place.colours.size()); ++i)
        addSwatch(swatches, indexed("GraphColor" + suffix, i),
                  place.colours[static_cast<qsizetype>(i)], place.title,
                  graphs.GraphColor[index][i], redraw);
    row->addWidget(holder);
    return column;
}

// How many points, how many readings each stands for, and the time that comes of it.
QLayout* makeSpan(GraphControls& graphs, QWidget* page) {
    auto* row = new QHBoxLayout;
    row->setSpacing(look::kGap);
    const auto addNumber = [&](const QString& caption, const QString& name, NumberBox& record) {
        auto* label = new QLabel(caption, page);
        KivGetNumber* box = makeNumber(page, name, record);
        label->setBuddy(box);
        row->addWidget(label);
        row->addWidget(box);
        row->addSpacing(look::kMargin);
    };
    const auto addLabel = [&](const QString& name, Label& record) {
        auto* label = new QLabel(page);
        label->setObjectName(name);
        bind(label, record);
        row->addWidget(label);
    };
    addNumber(u"Points kept"_s, u"GraphNoPoints"_s, graphs.GraphNoPoints);
    addNumber(u"&Readings per point"_s, u"GraphFreq"_s, graphs.GraphFreq);
    row->addWidget(new QLabel(u"A full graph spans"_s, page));
    addLabel(u"GraphSpanDesc"_s, graphs.GraphSpanDesc);
    row->addWidget(new QLabel(u"="_s, page));
    addLabel(u"GraphSpan"_s, graphs.GraphSpan);
    row->addWidget(new QLabel(u"secs"_s, page));
    row->addStretch();
    return row;
}

} // namespace

QWidget* makeGraphsPage(MonitoringCore& core, QWidget* parent) {
    const QStringList value{u"Text"_s, u"Line"_s};
    const std::array<GraphPlace, kGraphCount> places{{
        {u"Wind"_s, Quantity::Wind, "Wind", value},
        {u"Gust"_s, Quantity::Gust, "Gust", value},
        {u"Direction"_s, {}, "Dir", {u"Text"_s, u"Points"_s, u"Grid"_s}},
        {u"Dew-point spread"_s, Quantity::Dew, "Dew", value},
        {u"Humidity"_s, Quantity::Humidity, "Hum", value},
        {u"Temperature"_s, Quantity::Temperature, "Temp", value},
    }};
    auto* page = new QWidget(parent);
    QVBoxLayout* column = pageColumn(page);
    column->setSpacing(look::kGap);
    column->addLayout(makeSpan(core.records.graphs, page));
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(look::kMargin);
    grid->setVerticalSpacing(look::kGap);
    constexpr std::size_t kPerRow = 3;
    for (std::size_t i = 0; i < places.size(); ++i)
        grid->addLayout(makeGraph(i, places[i], core, page), static_cast<int>(i / kPerRow),
                        static_cast<int>(i % kPerRow));
    for (int i = 0; i < static_cast<int>(kPerRow); ++i)
        grid->setColumnStretch(i, 1);
    column->addLayout(grid, 1);
    return page;
}

} // namespace skyhold
