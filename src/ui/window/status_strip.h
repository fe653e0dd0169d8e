// SPDX-License-Identifier: GPL-3.0-or-later
// The two status lines on their light strip.
#pragma once

#include "records/session_controls.h"

#include <QWidget>

namespace skyhold {

// A right click on the codes opens their legend.
class StatusStrip : public QWidget {
    Q_OBJECT

  public:
    StatusStrip(SessionControls& session, QWidget* parent);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void growWithWindow();
};

} // namespace skyhold
