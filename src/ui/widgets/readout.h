// SPDX-License-Identifier: GPL-3.0-or-later
// Small widgets that only show something and are painted by hand: a new text or colour repaints
// their own rectangle and never lays a window out again.
#pragma once

#include <QColor>
#include <QString>
#include <QWidget>

namespace skyhold {

// Where a text takes its colour from when none is stated.
enum class Tone { Text, Dim, Disabled, Accent, Strip };

// One text. A text that does not fit is drawn smaller, down to two thirds, then cut with an
// ellipsis. Its size is fixed where it is placed.
class Readout : public QWidget {
    Q_OBJECT

  public:
    explicit Readout(QWidget* parent);

    QString text() const { return text_; }
    void setText(const QString& text);
    QColor ink() const { return ink_; }
    // A stated colour, which every look shows in its own way; an invalid one stands for the tone.
    void setInk(const QColor& ink);
    void setTone(Tone tone);
    // A text of the past: grey, whatever colour is stated.
    void setOld(bool old);
    // What the text stands on, unless it is the window.
    void setGround(const QColor& ground);

    // The colour of the letters in the look in force.
    virtual QColor shownInk() const;

    void setPixelSize(int size, bool bold = false);
    // Letters `unit` times as large as asked for, now and later.
    void grow(qreal unit);
    void setAlignment(Qt::Alignment alignment) { alignment_ = alignment; }
    void setWrap(bool wrap) { wrap_ = wrap; }
    // For paths: kept at its size and cut in the middle.
    void cutInMiddle() { cutInMiddle_ = true; }
    // Of the letters as they are drawn.
    QFont fittedFont() const;
    // Whether the text is shown without being cut.
    bool fitsWhole() const { return share(fittedFont()) >= 1; }
    // Asks for a fixed width in which `widest` fits.
    void reserve(const QString& widest);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  Q_SIGNALS:
    void textChanged(const QString& text);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    int textFlags() const;
    // The room over what the text needs in this font: below 1 it does not fit.
    double share(const QFont& font) const;

    QString text_;
    QColor ink_;
    QColor ground_;
    Tone tone_ = Tone::Text;
    bool old_ = false;
    int size_ = 0; // of the letters, as asked for
    qreal unit_ = 1;
    QString widest_;
    Qt::Alignment alignment_ = Qt::AlignLeft | Qt::AlignVCenter;
    bool cutInMiddle_ = false;
    bool wrap_ = false;
};

// A description on its colour; the text is dark or light, whichever can be read on it.
class Swatch : public Readout {
    Q_OBJECT

  public:
    explicit Swatch(QWidget* parent);

    QColor fill() const { return fill_; }
    void setFill(const QColor& fill);
    // The colour in a small field before the description, which has the ink of texts.
    void shrinkToChip();

    // Room before the description where the colour stands so.
    static constexpr int kChipRoom = 20;

  protected:
    void paintEvent(QPaintEvent* event) override;
    QColor shownInk() const override;

  private:
    QColor fill_;
    bool chip_ = false;
};

// A round lamp. What is off is hollow in night vision; a large one carries the sign of its colour,
// a tick for green and a cross for red, for those who see no colours.
class LampWidget : public QWidget {
    Q_OBJECT

  public:
    LampWidget(int diameter, QWidget* parent);

    QColor colour() const { return colour_; }
    void setColour(const QColor& colour);
    // A ring around a square, whatever the colour: nothing is shown.
    void setUnlit(bool unlit);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QColor colour_;
    bool unlit_ = false;
};

enum class Edge { None, Line, Dashed };

// A rounded card on which others stand, in the colour of cards unless another is stated.
class Card : public QWidget {
    Q_OBJECT

  public:
    explicit Card(QWidget* parent);
    // An invalid colour stands for that of cards.
    void setFill(const QColor& fill);
    // Has the colour of a group of settings.
    void standForGroup();
    // Has the colour of fields, and a line around it.
    void standAsWell();
    // With an edge the card is hollow.
    void setEdge(Edge edge);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QColor fill_;
    bool group_ = false;
    bool well_ = false;
    Edge edge_ = Edge::None;
};

} // namespace skyhold
