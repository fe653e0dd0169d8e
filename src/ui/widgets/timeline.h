// SPDX-License-Identifier: GPL-3.0-or-later
// A night on one time axis: the verdict as a band, a row for each quantity. A moment can be pointed
// at with the mouse or the keys; wheel, drag and keys change what is shown of it.
#pragma once

#include "ui/widgets/timeline_paint.h"

#include <QPixmap>
#include <QWidget>

#include <memory>
#include <optional>

namespace skyhold {

enum class NightSpan : std::uint8_t { Hour, Tonight, Day, Week };

class Timeline : public QWidget {
    Q_OBJECT

  public:
    explicit Timeline(QWidget* parent);

    // What is shown; ends in the present when `view.atNow`.
    void show(std::shared_ptr<const Night> night, const TimelineView& view);
    // In the place of the plot: why there is none. Empty: the plot.
    void setMessage(const QString& message);
    QString message() const { return message_; }

    const TimelineView& view() const { return view_; }
    const Night* night() const { return night_.get(); }
    TimelineGrid grid() const;

    // Marks a moment, and moves the view to it where it is not in sight.
    void pointAt(std::int64_t atMs);
    void pointAtNothing();
    std::optional<std::int64_t> cursor() const { return cursor_; }

    // The user wants another stretch of time; `atNow` when it ends in the present.
    std::function<void(TimeRange shown, bool atNow)> onRange;
    std::function<void(NightSpan)> onSpan;
    std::function<void()> onBackToNow;
    std::function<void(std::int64_t atMs)> onWhy; // what the verdict was then, and why

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool event(QEvent* event) override;

  private:
    void zoom(double factor, std::int64_t aboutMs);
    void panBy(std::int64_t ms);
    void request(TimeRange shown);
    void moveCursor(int pixels);
    void announce();
    std::int64_t lastMs() const;

    std::shared_ptr<const Night> night_;
    TimelineView view_;
    QString message_;
    std::optional<std::int64_t> cursor_;
    bool byKeys_ = false; // the cursor stays when the mouse leaves
    QPixmap still_;       // all but the cursor; empty: to be painted again
    std::optional<QPointF> pressed_;
    TimeRange pressedShown_;
    bool dragged_ = false;
};

} // namespace skyhold
