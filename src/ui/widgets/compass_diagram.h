// SPDX-License-Identifier: GPL-3.0-or-later
// A compass with a shaded sector. Its edges are taken by the hand on the rim, or turned by keys:
// the arrows by one degree, Page Up and Page Down by ten, the space bar goes to the other edge. A
// drag up or down elsewhere turns its bounds, too. An arrow shows the wind.
#pragma once

#include <QWidget>

#include <optional>

namespace skyhold {

class CompassDiagram : public QWidget {
    Q_OBJECT

  public:
    explicit CompassDiagram(QWidget* parent);

    // Degrees clockwise from north; `from` may be negative.
    void setSector(int from, int to);
    // Where the wind comes from, in degrees; nothing when that is not known.
    void setWind(std::optional<double> from);

  Q_SIGNALS:
    // A vertical drag with the left button turns "from", with the right button "to".
    void fromDragged(int degrees);
    void toDragged(int degrees);
    // An edge was turned to a direction: both edges, 0..359.
    void edgesTurned(int from, int to);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    enum class Edge { From, To };
    // What the mouse holds. Edges that lie together: the one that its first move shows.
    enum class Grip { None, Bounds, Edge, Either };

    int edge(Edge which) const;
    bool wide() const { return to_ - from_ > 180; }
    void turn(Edge which, int direction);
    void drawHandle(QPainter& painter, Edge which) const;
    void drawWind(QPainter& painter) const;

    int from_ = 0;
    int to_ = 0;
    std::optional<double> wind_;
    Edge active_ = Edge::From;
    Grip grip_ = Grip::None;
    int lastY_ = 0;
};

} // namespace skyhold
