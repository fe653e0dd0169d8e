// SPDX-License-Identifier: GPL-3.0-or-later
// An alarm's widgets: its box, the name of its sound, and the mark that it is playing.
#pragma once

#include "records/controls.h"

#include <QAbstractButton>

namespace skyhold {

// A bell that is pressed while the alarm is enabled; an alarm without a sound shows no bell.
class AlarmBox : public QAbstractButton {
    Q_OBJECT

  public:
    AlarmBox(CheckBox& record, QWidget* parent);

    QSize sizeHint() const override;

  Q_SIGNALS:
    // Any button of the mouse was released over the box, after the box has been clicked.
    void mouseReleased(Qt::MouseButton button);
    // The context-menu key or Shift+F10.
    void editWanted();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    CheckBox& record_;
};

// The file name of the box's sound; a click is to open the sound chooser.
class SoundName : public QAbstractButton {
    Q_OBJECT

  public:
    SoundName(CheckBox& record, QWidget* parent);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    void showSound(const QString& tag);

    bool repeat_ = false;
};

// A speaker while the alarm sounds, a muted one while it should and does not, else nothing.
class PlayMark : public QWidget {
    Q_OBJECT

  public:
    PlayMark(QProperty<bool>& playing, Label& soundFault, QWidget* parent);

    bool isPlaying() const { return playing_; }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    bool playing_ = false;
    bool silent_ = false;
};

} // namespace skyhold
