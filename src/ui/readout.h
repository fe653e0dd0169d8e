// Small widgets that only show something and are painted by hand: a new text or colour repaints
// their own rectangle and never lays a window out again.
#pragma once

#include <QColor>
#include <QString>
#include <QWidget>

namespace skyhold {

// One text. A text that does not fit is drawn smaller, down to two thirds, then cut with an
// ellipsis. Its size is fixed by whoever places it.
class Readout : public QWidget {
    Q_OBJECT

  public:
    explicit Readout(QWidget* parent);

    QString text() const { return text_; }
    void setText(const QString& text);
    QColor ink() const { return ink_; }
    // An invalid colour stands for the palette's own text colour.
    void setInk(const QColor& ink);

    void setPixelSize(int size, bool bold = false);
    void setAlignment(Qt::Alignment alignment) { alignment_ = alignment; }
    void setWrap(bool wrap) { wrap_ = wrap; }
    // For paths: kept at its size and cut in the middle.
    void cutInMiddle() { cutInMiddle_ = true; }
    // Asks for a fixed width in which `widest` fits.
    void reserve(const QString& widest);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QString text_;
    QColor ink_;
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

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QColor fill_;
};

// A round lamp.
class LampWidget : public QWidget {
    Q_OBJECT

  public:
    LampWidget(int diameter, QWidget* parent);

    QColor colour() const { return colour_; }
    void setColour(const QColor& colour);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QColor colour_;
};

// A rounded card on which others stand.
class Card : public QWidget {
    Q_OBJECT

  public:
    explicit Card(QWidget* parent);
    void setFill(const QColor& fill);
    QColor fill() const { return fill_; }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QColor fill_;
};

} // namespace skyhold
