// The legend of the status codes.
#pragma once

#include <QDialog>

namespace skyhold {

class KivLegend : public QDialog {
    Q_OBJECT

  public:
    explicit KivLegend(QWidget* parent);

    // Opens near `item`; it stays open beside the window until its OK. The one that is open
    // already comes to the front.
    static void openNear(const QWidget* item, QWidget* parent);
};

} // namespace skyhold
