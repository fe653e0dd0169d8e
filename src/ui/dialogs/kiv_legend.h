// SPDX-License-Identifier: GPL-3.0-or-later
// The legend of the status codes.
#pragma once

#include <QDialog>

namespace skyhold {

class KivLegend : public QDialog {
    Q_OBJECT

  public:
    // `active`: the codes of now, with spaces between; their rows are marked.
    explicit KivLegend(QWidget* parent, const QString& active = {});

    // Opens near `item`; it stays open beside the window until its OK. The one that is open
    // already comes to the front.
    static void openNear(const QWidget* item, QWidget* parent, const QString& active);

  private:
    void mark(const QString& active);
};

} // namespace skyhold
