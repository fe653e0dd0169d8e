// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/dialogs/news_window.h"

#include "core/monitoring_core.h"
#include "ui/dialogs/dialog_parts.h"
#include "ui/look/look.h"
#include "ui/window/main_window.h"
#include "update/update_check.h"

#include <QCheckBox>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr int kNarrowestText = 300;
constexpr int kWidestText = 520; // longer lines are wrapped

} // namespace

NewsWindow::NewsWindow(const QString& text, QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::WindowStaysOnTopHint) {
    setObjectName(u"NewsWindow"_s);
    setWindowTitle(u"News"_s);
    QVBoxLayout* column = dialogColumn(this);
    column->addWidget(textOf(text));

    auto* row = new QHBoxLayout;
    row->setContentsMargins(0, 4, 0, 0);
    row->setSpacing(look::kMargin);
    discard_ = new QCheckBox(u"&Discard this message"_s, this);
    discard_->setObjectName(u"CheckDiscard"_s);
    auto* close = new QPushButton(u"Close"_s, this);
    close->setObjectName(u"ButtClose"_s);
    close->setMinimumSize(96, 32);
    close->setDefault(true);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    row->addWidget(discard_);
    row->addStretch();
    row->addWidget(close);
    column->addLayout(row);
    close->setFocus();
}

// A label sized to the text; a text too long for the screen is scrolled.
QWidget* NewsWindow::textOf(const QString& text) {
    QString lines = text;
    lines.replace(u"\r\n"_s, u"\n"_s).replace(u'\r', u'\n');
    auto* label = new QLabel(lines, this);
    label->setObjectName(u"LblNews"_s);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    label->setWordWrap(true);
    const QRect needed = QFontMetrics(label->font()).boundingRect(QRect(), Qt::AlignLeft, lines);
    const int width = std::clamp(needed.width() + 4, kNarrowestText, kWidestText);
    const int height = label->heightForWidth(width);
    label->setFixedSize(width, height);
    const int tallest = screen()->availableGeometry().height() / 2;
    if (height <= tallest)
        return label;
    auto* pane = new QScrollArea(this);
    pane->setFrameShape(QFrame::NoFrame);
    pane->setWidget(label);
    pane->setFixedSize(width + pane->verticalScrollBar()->sizeHint().width() + look::kGap, tallest);
    return pane;
}

bool NewsWindow::discards() const {
    return discard_->isChecked();
}

void showNewsOver(QWidget& window, MonitoringCore& core, const QString& text) {
    NewsWindow news(text, &window);
    centreOver(&news, &window);
    execOver(news);
    if (news.discards())
        DiscardNews(core.records.window, core.settings);
}

} // namespace skyhold
