// SPDX-License-Identifier: GPL-3.0-or-later
// A picture that is being drawn: the plot area above, the strip of time labels below, and what
// all graphs have in common.
#pragma once

#include "graphs/time_axis.h"
#include "model/colours.h"
#include "records/graph_pictures.h"

#include <QPainter>

namespace skyhold {

// Sizes in points of 1/96 inch screens; they grow with the picture's pixel ratio.
inline constexpr double kLabelPoints = 7;
inline constexpr double kMarkerPoints = 9;
inline constexpr double kCaptionPoints = 14;

class GraphPaper {
  public:
    // Clears the picture, at the size that its view wants. `text` is the colour of all texts.
    GraphPaper(Picture& picture, Colour text);
    // Ends the drawing and counts it.
    ~GraphPaper();
    GraphPaper(const GraphPaper&) = delete;
    GraphPaper& operator=(const GraphPaper&) = delete;

    int width() const { return width_; }
    int height() const { return height_; }
    int bottom() const { return bottom_; } // of the plot area, which begins at 0
    QPainter& painter() { return painter_; }

    void setFont(double points);
    // In the current font.
    QSize textSize(const QString& text) const;
    // One line of text in a rectangle.
    void drawCentred(const QRect& rectangle, const QString& text);
    void drawRightAligned(const QRect& rectangle, const QString& text);

    void drawTimeTicks(const TimeAxis& axis);
    // The program's name in the upper right corner.
    void drawMarker();

  private:
    void drawText(const QRect& rectangle, int alignment, const QString& text);

    Picture& picture_;
    QPainter painter_;
    QColor text_;
    int width_ = 0;
    int height_ = 0;
    int bottom_ = 0;
    int stripHeight_ = 0;
};

// Where the plot area of a picture that has been drawn ends.
int plotBottom(const Picture& picture);

QColor paintColour(Colour colour);

} // namespace skyhold
