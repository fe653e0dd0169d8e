// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/grow_page.h"

#include "ui/widgets/readout.h"

#include <QApplication>
#include <QGridLayout>
#include <QVariant>

namespace skyhold {

namespace {

constexpr char kByItself[] = "growsByItself";

// A length that something stands at, by the unit. `name` keeps what it was made with; a length that
// is not what was set here last was made anew.
int grown(QObject* of, const QByteArray& name, int length, qreal unit) {
    const QByteArray last = name + "Set";
    if (of->property(last.constData()).toInt() != length)
        of->setProperty(name.constData(), length);
    const int now = qRound(of->property(name.constData()).toInt() * unit);
    of->setProperty(last.constData(), now);
    return now;
}

void growFixedSize(QWidget* widget, qreal unit) {
    if (widget->minimumWidth() == widget->maximumWidth())
        widget->setFixedWidth(grown(widget, "madeWidth", widget->minimumWidth(), unit));
    if (widget->minimumHeight() == widget->maximumHeight())
        widget->setFixedHeight(grown(widget, "madeHeight", widget->minimumHeight(), unit));
}

// Margins, and what stands between the parts.
void growLayout(QLayout* layout, qreal unit) {
    const QMargins margins = layout->contentsMargins();
    layout->setContentsMargins(grown(layout, "madeLeft", margins.left(), unit),
                               grown(layout, "madeTop", margins.top(), unit),
                               grown(layout, "madeRight", margins.right(), unit),
                               grown(layout, "madeBottom", margins.bottom(), unit));
}

void growGrid(QGridLayout* grid, qreal unit) {
    for (int i = 0; i < grid->columnCount(); ++i) {
        if (const int width = grid->columnMinimumWidth(i); width > 0)
            grid->setColumnMinimumWidth(
                i, grown(grid, "madeColumn" + QByteArray::number(i), width, unit));
    }
    for (int i = 0; i < grid->rowCount(); ++i) {
        if (const int height = grid->rowMinimumHeight(i); height > 0)
            grid->setRowMinimumHeight(i,
                                      grown(grid, "madeRow" + QByteArray::number(i), height, unit));
    }
}

} // namespace

// All but the texts that a Readout shows have the page's letters.
void growPage(QWidget* page, qreal unit) {
    QFont font = page->font();
    font.setPixelSize(qRound(QFontInfo(QApplication::font()).pixelSize() * unit));
    page->setFont(font);
    for (QWidget* widget : page->findChildren<QWidget*>()) {
        if (widget->isWindow() || widget->property(kByItself).toBool())
            continue;
        if (auto* readout = qobject_cast<Readout*>(widget))
            readout->grow(unit);
        growFixedSize(widget, unit);
    }
    for (QLayout* layout : page->findChildren<QLayout*>())
        growLayout(layout, unit);
    for (QGridLayout* grid : page->findChildren<QGridLayout*>())
        growGrid(grid, unit);
    if (QLayout* layout = page->layout())
        layout->activate(); // one that is not in sight does not do so by itself
}

void growsByItself(QWidget* widget) {
    widget->setProperty(kByItself, true);
}

} // namespace skyhold
