// SPDX-License-Identifier: GPL-3.0-or-later
// Shows a graph's picture, and has it drawn as large as the view is.
#pragma once

#include "records/graph_pictures.h"

#include <QWidget>

#include <functional>

namespace skyhold {

class GraphView : public QWidget {
    Q_OBJECT

  public:
    // `redraw` draws the picture again when the view has changed its size; it may decline.
    GraphView(Picture& picture, std::function<void()> redraw, QWidget* parent);

    QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void fitPicture();

    Picture& picture_;
    std::function<void()> redraw_;
};

} // namespace skyhold
