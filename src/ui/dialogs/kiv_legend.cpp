#include "ui/dialogs/kiv_legend.h"

#include "records/status_lines.h"
#include "ui/dialogs/dialog_parts.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace skyhold {

KivLegend::KivLegend(QWidget* parent)
    : QDialog(parent) {
    setObjectName(QStringLiteral("KivLegend"));
    setWindowTitle(QStringLiteral("Status codes"));
    QVBoxLayout* column = dialogColumn(this);
    auto* rows = new QLabel(statusCodeLegend().join(u'\n'), this);
    rows->setObjectName(QStringLiteral("LblLegend"));
    rows->setTextFormat(Qt::PlainText);
    rows->setTextInteractionFlags(Qt::TextSelectableByMouse);
    column->addWidget(rows);
    const OkAndCancel buttons = addOkAndCancel(this, column);
    buttons.cancel->hide();
}

void KivLegend::openNear(const QWidget* item, QWidget* parent) {
    auto* legend = parent->findChild<KivLegend*>(QString(), Qt::FindDirectChildrenOnly);
    if (!legend) {
        legend = new KivLegend(parent);
        legend->setAttribute(Qt::WA_DeleteOnClose);
        placeNear(legend, item);
    }
    legend->show();
    legend->raise();
    legend->activateWindow();
}

} // namespace skyhold
