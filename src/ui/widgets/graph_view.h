// SPDX-License-Identifier: GPL-3.0-or-later
// Shows a graph's picture, and has it drawn as large as the view is. The scale of its values and
// the point under the mouse are laid over it, and are not part of the picture.
#pragma once

#include "graphs/render.h"
#include "records/graph_pictures.h"

#include <QWidget>

#include <functional>
#include <optional>

namespace skyhold {

class GraphView : public QWidget {
    Q_OBJECT

  public:
    // `redraw` draws the picture again when the view has changed its size; it may decline. `graph`
    // is what the picture shows.
    GraphView(Picture& picture, const RenderedGraph& graph, std::function<void()> redraw,
              QWidget* parent);

    // Of the values, as the window names it.
    void setUnit(const QString& unit);

    QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;

  private:
    void fitPicture();

    Picture& picture_;
    const RenderedGraph& graph_;
    QString unit_;
    std::optional<double> pointed_; // x
    std::function<void()> redraw_;
};

} // namespace skyhold
