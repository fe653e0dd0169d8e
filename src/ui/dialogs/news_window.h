// SPDX-License-Identifier: GPL-3.0-or-later
// The maker's news.
#pragma once

#include <QDialog>

class QCheckBox;

namespace skyhold {

struct MonitoringCore;

// Stays on top of other windows. However it is closed, "Discard this message" is asked of
// `discards` afterwards.
class NewsWindow : public QDialog {
    Q_OBJECT

  public:
    NewsWindow(const QString& text, QWidget* parent);

    bool discards() const;

  private:
    QWidget* textOf(const QString& text);

    QCheckBox* discard_;
};

// Shows the news over `window` until they are closed, and forgets them when they are discarded.
void showNewsOver(QWidget& window, MonitoringCore& core, const QString& text);

} // namespace skyhold
