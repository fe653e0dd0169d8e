// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/dialogs/kiv_legend.h"

#include "records/status_lines.h"
#include "ui/dialogs/dialog_parts.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace skyhold {

KivLegend::KivLegend(QWidget* parent, const QString& active)
    : QDialog(parent) {
    setObjectName(QStringLiteral("KivLegend"));
    setWindowTitle(QStringLiteral("Status codes"));
    QVBoxLayout* column = dialogColumn(this);
    auto* rows = new QLabel(this);
    rows->setObjectName(QStringLiteral("LblLegend"));
    rows->setTextInteractionFlags(Qt::TextSelectableByMouse);
    column->addWidget(rows);
    const OkAndCancel buttons = addOkAndCancel(this, column);
    buttons.cancel->hide();
    mark(active);
}

void KivLegend::mark(const QString& active) {
    const QStringList codes = active.split(u' ', Qt::SkipEmptyParts);
    QStringList lines;
    for (const QString& row : statusCodeLegend()) {
        const bool now = !row.isEmpty() && codes.contains(row.section(u' ', 0, 0));
        lines += now ? QStringLiteral("<b>\u25B6 %1 (now)</b>").arg(row.toHtmlEscaped())
                     : row.toHtmlEscaped();
    }
    auto* rows = findChild<QLabel*>(QStringLiteral("LblLegend"));
    rows->setTextFormat(Qt::RichText);
    rows->setText(lines.join(QStringLiteral("<br>")));
}

void KivLegend::openNear(const QWidget* item, QWidget* parent, const QString& active) {
    auto* legend = parent->findChild<KivLegend*>(QString(), Qt::FindDirectChildrenOnly);
    if (!legend) {
        legend = new KivLegend(parent, active);
        legend->setAttribute(Qt::WA_DeleteOnClose);
        placeNear(legend, item);
    }
    legend->mark(active);
    legend->show();
    legend->raise();
    legend->activateWindow();
}

} // namespace skyhold
