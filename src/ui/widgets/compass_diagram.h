// A compass with a shaded sector; dragging up or down turns its bounds.
#pragma once

#include <QWidget>

namespace skyhold {

class CompassDiagram : public QWidget {
    Q_OBJECT

  public:
    explicit CompassDiagram(QWidget* parent);

    // Degrees clockwise from north; `from` may be negative.
    void setSector(int from, int to);

  Q_SIGNALS:
    // A vertical drag with the left button turns "from", with the right button "to".
    void fromDragged(int degrees);
    void toDragged(int degrees);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

  private:
    int from_ = 0;
    int to_ = 0;
    int lastY_ = 0;
};

} // namespace skyhold
